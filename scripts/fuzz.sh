#!/usr/bin/env bash
# Runs every fuzz target of the fuzz build for a bounded time, then the
# monkey test of the control with many steps.
#
#   scripts/fuzz.sh BUILD_DIR
#
# FUZZ_SECONDS   time per target (default 300)
# FUZZ_MAX_LEN   largest input in bytes (default 32768: deep enough for the
#                nesting limit)
# FUZZ_TARGETS   the targets to run (default: fuzz_document fuzz_control)
# FUZZ_MONKEY_STEPS  steps per row of the monkey test (default 3000; 0 skips it)
# FIELDBRIDGE_MONKEY_SEED  the monkey's seed (default: a new one, printed)
#
# Each target keeps its corpus in build/fuzz-corpus/<target>, seeded from
# examples/, fuzz/seeds/ and fuzz/regressions/. A crash, leak, hang or broken
# round trip fails the run and leaves the reproducer in build/fuzz-artifacts.
set -uo pipefail
cd "$(dirname "$0")/.."

build=${1:-build/fuzz}
seconds=${FUZZ_SECONDS:-300}
max_len=${FUZZ_MAX_LEN:-32768}
targets=${FUZZ_TARGETS:-fuzz_document fuzz_control}
monkey_steps=${FUZZ_MONKEY_STEPS:-3000}
artifacts=build/fuzz-artifacts

export ASAN_OPTIONS="${ASAN_OPTIONS:-abort_on_error=1:detect_leaks=1:strict_string_checks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}"
export LSAN_OPTIONS="${LSAN_OPTIONS:-suppressions=$PWD/tests/lsan.supp:print_suppressions=0}"
export QT_QPA_PLATFORM=offscreen

mkdir -p "$artifacts"
failed=()
summary=()
for target in $targets; do
  binary="$build/fuzz/$target"
  corpus="build/fuzz-corpus/$target"
  mkdir -p "$corpus"
  for seed in examples/*.xml fuzz/seeds/*.xml fuzz/regressions/*.xml; do
    [ -f "$seed" ] && cp -n "$seed" "$corpus/" 2>/dev/null
  done
  log="$artifacts/$target.log"
  echo "== $target: ${seconds}s, corpus $corpus"
  "$binary" -dict=fuzz/mapping.dict -max_len="$max_len" -max_total_time="$seconds" -timeout=60 \
    -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="$artifacts/$target-" "$corpus" >"$log" 2>&1
  status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
  rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
  summary+=("$target: ${runs:-?} executions (${rate:-?}/s)")
  if [ $status -ne 0 ]; then
    failed+=("$target")
    grep -B1 -A3 "^  lengths" "$log" | head -5 # a broken round trip: what and where
    grep -E "^(SUMMARY|==[0-9]+==ERROR)|Test unit written" "$log" | head -5
    echo "   full log: $log"
  fi
done

if [ "$monkey_steps" -gt 0 ]; then
  seed=${FIELDBRIDGE_MONKEY_SEED:-$(date +%s)}
  log="$artifacts/tst_monkey.log"
  echo "== monkey test: $monkey_steps steps per row, seed $seed"
  if FIELDBRIDGE_MONKEY_SEED=$seed FIELDBRIDGE_MONKEY_STEPS=$monkey_steps \
     FIELDBRIDGE_TEMP="$PWD/$build/monkey-scratch" FIELDBRIDGE_EXAMPLES="$PWD/examples" \
     "$build/tests/control/tst_monkey" >"$log" 2>&1; then
    summary+=("tst_monkey: $monkey_steps steps per row, seed $seed")
  else
    failed+=("tst_monkey (seed $seed)")
    grep -E "^(FAIL|monkey: replay)|SUMMARY" "$log" | head -8
    echo "   full log: $log"
  fi
fi

echo "== summary"
printf '   %s\n' "${summary[@]}"
if [ ${#failed[@]} -ne 0 ]; then
  echo "FAILED: ${failed[*]} (reproducers in $artifacts)"
  exit 1
fi
