#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (address and undefined-behaviour sanitizers) and runs
# each for SECONDS (default 60) on a corpus grown from fuzz/seeds/<target>. Prints each target's
# executions and coverage; exits non-zero when a target finds a crash (its input, like any leak,
# timeout or out-of-memory input, is kept in build/fuzz/artifacts, under the ignored build/).
# Usage: fuzz/run.sh [SECONDS] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true
build=build/fuzz
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
  -DCMAKE_CXX_COMPILER=clang++ -DZV_BUILD_FUZZ=ON -DZV_BUILD_TESTS=OFF -DZV_BUILD_BENCH=OFF > /dev/null
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for seed in fuzz/seeds/*/; do targets+=("$(basename "$seed")"); done
fi
cmake --build "$build" -j "$(nproc)" --target "${targets[@]/%/_fuzz}" > "$build/build.log" 2>&1 ||
  { grep -E -A5 'error|FAILED' "$build/build.log" | head -n 40; echo "fuzz: the targets do not build"; exit 1; }
mkdir -p "$build/artifacts"
failed=0
for t in "${targets[@]}"; do
  corpus="$build/corpus/$t"
  mkdir -p "$corpus"
  cp -n fuzz/seeds/"$t"/* "$corpus"/ 2> /dev/null || true
  log="$build/$t.log"
  if ASAN_OPTIONS=detect_leaks=1 LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 \
    "$build/fuzz/${t}_fuzz" "$corpus" -max_total_time="$seconds" -max_len=65536 \
    -rss_limit_mb=2048 -timeout=10 -artifact_prefix="$build/artifacts/$t-" -print_final_stats=1 \
    > "$log" 2>&1; then
    execs=$(grep -m1 'stat::number_of_executed_units' "$log" | awk '{print $2}')
    cov=$(grep -E '^#[0-9]+.*(DONE|pulse|NEW|REDUCE).*cov:' "$log" | tail -1 | sed -E 's/.*cov: ([0-9]+).*/\1/')
    echo "$t: $execs executions, coverage $cov edges, corpus $(ls "$corpus" | wc -l) inputs"
  else
    failed=1
    echo "$t: FOUND A FAULT, see $log and $build/artifacts"
    grep -m5 -E 'ERROR|check failed|SUMMARY' "$log" || true
  fi
done
exit $failed
