#!/usr/bin/env bash
# Service-flow benchmarks against a local `zvpush serve --latency 100`:
#  1. a carousel of five images against the same flow without media: the downloads run side by
#     side, so the difference should stay within 1.3 latencies (a serial download would be 5);
#  2. peak resident memory of `zvpush service` attaching three 8 MB images (downloads stream to
#     disk; zvpush loads no Pango, Cairo or FFmpeg).
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
awk -v a="$m5" -v b="$m0" -v l="$latency_ms" \
  'BEGIN {printf "difference %d ms = %.2f latencies (goal <= 1.30)\n", a - b, (a - b) / l}'

rm -rf "$work/tmp" && mkdir -p "$work/tmp"
peak=$( { /usr/bin/time -f "%M" "$zvpush" service "$work/big.json" --store "$work/store" \
  --app-group group.bench --tmp "$work/tmp" > "$work/big.out"; } 2>&1 | tail -n 1)
attached=$(grep -c '"identifier": "[0-9a-f]\{32\}"' "$work/big.out" || true)
echo "three 8 MB images: ${attached} attachments, peak resident ${peak} KiB (goal <= 16384)"
