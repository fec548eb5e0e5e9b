#!/usr/bin/env bash
# Service-flow benchmarks against a local `zvpush serve --latency 100`:
#  1. a carousel of five images against the same flow without media: the downloads run side by
#     side, so the difference should stay within 1.3 latencies (a serial download would be 5);
#  2. peak private dirty memory (what a phone counts; RSS beside it) of `zvpush service` attaching
#     three 8 MB images: downloads stream to disk and zvpush loads no Pango, Cairo or FFmpeg, so
#     the goal is 16 MiB.
# Exits 1 when a goal is missed.
# Usage: bench/service_bench.sh [path/to/zvpush] [runs]
set -euo pipefail
cd "$(dirname "$0")/.."
zvpush=$(realpath "${1:-build/release/tools/zvpush/zvpush}")
runs=${2:-15}
latency_ms=100
work=$(mktemp -d)
source scripts/local-server.sh

mkdir -p "$work/media"
for i in 1 2 3 4 5; do cp tests/data/media/sample.png "$work/media/card$i.png"; done
for i in 1 2 3; do
  { cat tests/data/media/sample.png; head -c 8000000 /dev/zero; } > "$work/media/big$i.png"
done
start_local_server "$zvpush" "$work" "$work/media" 0 --latency "$latency_ms" \
  --reports "$work/reports.jsonl"
base=$server_url
port=${base##*:}

store() { "$zvpush" store --store "$work/store" --app-group group.bench "$@" > /dev/null; }
store set zov_params '{"sdk": "bench"}'
store set zov_reports_host '"127.0.0.1"'
store set zov_reports_scheme '"http"'
store set zov_reports_port "$port"

payload() {  # payload FILE IMAGE...
  local file=$1 cards="" id=0
  shift
  for image in "$@"; do
    id=$((id + 1))
    [ -n "$cards" ] && cards="$cards,"
    cards="$cards{\"id\":$id,\"widgets\":[{\"id\":$id,\"type\":\"image\",\"content\":\"$base/$image\"}]}"
  done
  cat > "$file" <<JSON
{"aps": {"alert": {"title": "t", "body": "b"}, "mutable-content": 1},
 "zentrova": {"cid": "bench", "app_id": "bench-app"},
 "zovFeatures": {"richPush": {"title": "Bench", "body": "Five cards", "displayName": "bench",
   "expanded": {"type": "imageCarousel", "cards": [$cards]}}}}
JSON
}
payload "$work/five.json" card1.png card2.png card3.png card4.png card5.png
payload "$work/none.json"
payload "$work/big.json" big1.png big2.png big3.png

run_ms() {  # the wall time of one service run, in milliseconds
  local start end
  rm -rf "$work/tmp"
  mkdir -p "$work/tmp"
  start=$(date +%s%N)
  "$zvpush" service "$1" --store "$work/store" --app-group group.bench --tmp "$work/tmp" > /dev/null
  end=$(date +%s%N)
  echo $(((end - start) / 1000000))
}
median() { sort -n | awk '{a[NR] = $1} END {print a[int((NR + 1) / 2)]}'; }

five=() none=()
for _ in $(seq "$runs"); do  # interleaved, so both see the same machine
  five+=("$(run_ms "$work/five.json")")
  none+=("$(run_ms "$work/none.json")")
done
m5=$(printf '%s\n' "${five[@]}" | median)
m0=$(printf '%s\n' "${none[@]}" | median)
echo "five images: median ${m5} ms; no media: median ${m0} ms (over $runs runs each)"
missed=0
awk -v a="$m5" -v b="$m0" -v l="$latency_ms" \
  'BEGIN {printf "difference %d ms = %.2f latencies (goal <= 1.30)\n", a - b, (a - b) / l;
          exit !((a - b) / l <= 1.30)}' || { echo "MISSED: the downloads did not run side by side"; missed=1; }

rm -rf "$work/tmp" && mkdir -p "$work/tmp"
memory=$(python3 bench/peak_memory.py "$zvpush" service "$work/big.json" --store "$work/store" \
  --app-group group.bench --tmp "$work/tmp" --compact)
"$zvpush" service "$work/big.json" --store "$work/store" --app-group group.bench \
  --tmp "$work/tmp" > "$work/big.out"
attached=$(grep -o '"identifier": *"[0-9a-f]\{32\}"' "$work/big.out" | wc -l)
dirty=$(sed -nE 's/.*private_dirty_kb=([0-9]+).*/\1/p' <<< "$memory")
rss=$(sed -nE 's/.*rss_kb=([0-9]+).*/\1/p' <<< "$memory")
echo "three 8 MB images: ${attached} attachments, peak private dirty ${dirty} KiB (goal <= 16384)," \
  "RSS ${rss} KiB"
[ "$attached" -eq 3 ] || { echo "MISSED: ${attached} of 3 attachments"; missed=1; }
[ "$dirty" -le 16384 ] || { echo "MISSED: the memory goal"; missed=1; }
exit $missed
