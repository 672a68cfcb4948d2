#!/usr/bin/env bash
# Writes the reference logs of the session cases anew from the current build.
# Read `git diff tests/session/reference` before committing: every changed
# line is a change of behaviour.
set -euo pipefail
cd "$(dirname "$0")/../.."
build="${1:-build/dev}"
cmake --build "$build" --target tst_session
FIELDBRIDGE_UPDATE_REFERENCES=1 QT_QPA_PLATFORM=offscreen "$build/tests/session/tst_session" -silent
git status --short tests/session/reference
