#!/bin/sh
# A stand-in for a person's text editor: "append-edited FILE" appends a line
# and ends with 0; "fail FILE" changes the file and ends with 1.
case "$1" in
  append-edited) printf '\nedited' >> "$2"; exit 0 ;;
  fail) printf 'lost' > "$2"; exit 1 ;;
esac
exit 2
