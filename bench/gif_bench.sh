#!/usr/bin/env bash
# GIF decoding figures, all on one 100-frame 480 x 270 GIF made here with ffmpeg:
#  1. bench/gif_bench (Google Benchmark): our decoding against giflib's DGifSlurp plus compositing
#     (goal: at most 1.3 times);
#  2. `zvpush gif --frames` against ImageMagick's `convert -coalesce` writing the same PNG frames,
#     and decoding alone against `convert -coalesce null:` (goal: at least 3 times faster);
#  3. peak private dirty memory of `zvpush gif` without --frames (goal: at most a third of what 100
#     full frames take, 52 MB), and of a one-frame GIF with a 5-second delay.
# Usage: bench/gif_bench.sh [build dir]   (default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
zvpush=$build/tools/zvpush/zvpush-content
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

ffmpeg -loglevel error -y -f lavfi \
  -i "testsrc=size=480x270:rate=10:duration=10,split[a][b];[a]palettegen=stats_mode=diff[p];[b][p]paletteuse=diff_mode=rectangle" \
  "$work/big.gif"
convert -size 480x270 xc:orange -set delay 500 "$work/still.gif"

ZV_BENCH_GIF="$work/big.gif" "$build/bench/gif_bench" --benchmark_repetitions=5 \
  --benchmark_report_aggregates_only=true 2>/dev/null | grep -E 'median|Benchmark'

ms() {  # the median wall time of a command over 5 runs, in milliseconds
  for _ in 1 2 3 4 5; do
    local start end
    start=$(date +%s%N)
    "$@" > /dev/null 2>&1
    end=$(date +%s%N)
    echo $(((end - start) / 1000000))
  done | sort -n | sed -n 3p
}
ours_frames=$(ms "$zvpush" gif "$work/big.gif" --frames "$work/ours")
im_frames=$(ms convert "$work/big.gif" -coalesce "$work/im_%d.png")
im_decode=$(ms convert "$work/big.gif" -coalesce null:)
echo "writing 100 PNG frames: zvpush gif ${ours_frames} ms, convert -coalesce ${im_frames} ms"
echo "convert -coalesce null: ${im_decode} ms (decoding and compositing alone)"

echo -n "zvpush gif, 100 frames: "
python3 bench/peak_memory.py "$zvpush" gif "$work/big.gif"
echo -n "zvpush gif, one frame of 5 s: "
python3 bench/peak_memory.py "$zvpush" gif "$work/still.gif"
echo "100 full frames: $((480 * 270 * 4 * 100 / 1024)) kB"
