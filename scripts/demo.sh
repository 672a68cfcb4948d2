#!/usr/bin/env bash
# Installs the build tree into PREFIX and opens the installed fieldbridge-host
# on the installed sample mapping object. Without a display (no DISPLAY and no
# WAYLAND_DISPLAY) it renders both tabs offscreen to build/screenshots and
# prints where the pictures are.
#
# Usage: bash scripts/demo.sh BUILD_DIR PREFIX
set -euo pipefail

root="$(cd "$(dirname "$0")/.." && pwd)"
cd "$root"

build="${1:-build/dev}"
prefix="${2:-$root/build/install}"
case "$prefix" in /*) ;; *) prefix="$root/$prefix" ;; esac

if [ ! -f "$build/cmake_install.cmake" ]; then
  echo "demo: $build is not a configured build tree; run 'make build' first" >&2
  exit 1
fi

echo "demo: installing into $prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

host="$prefix/bin/fieldbridge-host"
sample="$prefix/share/VelkPrjFieldbridge/examples/klmno001.xml"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  shots="$root/build/screenshots"
  echo "demo: no display; rendering both tabs of $sample offscreen"
  QT_QPA_PLATFORM=offscreen "$host" --screenshot "$shots" "$sample" \
    2> >(grep -v 'propagateSizeHints' >&2)
  echo "demo: pictures written to $shots"
else
  # The Makefile defaults QT_QPA_PLATFORM to offscreen for the tests; the
  # window must go to the real display here.
  if [ "${QT_QPA_PLATFORM:-}" = offscreen ]; then
    unset QT_QPA_PLATFORM
  fi
  echo "demo: opening $sample"
  exec "$host" "$sample"
fi
