#!/usr/bin/env bash
# A whole `zvpush preview` of a five-card carousel of 1080 x 720 JPEGs: its wall time (median of
# 5) and its peak private dirty memory, against the goal of the decoded pixels of the cards drawn
# (one card at 0 s, two in the middle of a page turn) plus 8 MB.
# Usage: bench/preview_bench.sh [build dir] [card size]   (default build/release, 1080x720; camera
# photos of 4000x3000 are decoded at the size of their card)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
size=${2:-1080x720}
zvpush=$build/tools/zvpush/zvpush-content
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cards="" attachments=""
for i in 1 2 3 4 5; do
  convert -size 540x360 plasma:orange-white -resize "$size!" -quality 90 "$work/card$i.jpg"
  url="https://cdn.example.com/card$i.jpg"
  id=$(printf '%s' "$url" | md5sum | cut -d' ' -f1)
  [ -n "$cards" ] && cards="$cards," && attachments="$attachments,"
  cards="$cards{\"id\":$i,\"widgets\":[{\"id\":1,\"type\":\"image\",\"content\":\"$url\"}]}"
  attachments="$attachments{\"identifier\":\"$id\",\"url\":\"file://$work/card$i.jpg\"}"
done
cat > "$work/delivered.json" <<JSON
{"identifier": "bench", "attachments": [$attachments],
 "userInfo": {"aps": {"alert": "a"}, "zentrova": {"cid": "c", "app_id": "a"},
  "zovFeatures": {"richPush": {"title": "Five cards", "body": "Bench", "displayName": "b",
   "expanded": {"type": "imageCarousel", "autoStart": true, "cards": [$cards]}}}}}
JSON

for at in 0 3.04; do
  times=()
  for _ in 1 2 3 4 5; do
    start=$(date +%s%N)
    "$zvpush" preview "$work/delivered.json" -o "$work/p.png" --at "$at" > /dev/null
    end=$(date +%s%N)
    times+=($(((end - start) / 1000000)))
  done
  median=$(printf '%s\n' "${times[@]}" | sort -n | sed -n 3p)
  echo -n "preview at $at s: ${median} ms; "
  python3 bench/peak_memory.py "$zvpush" preview "$work/delivered.json" -o "$work/p.png" --at "$at"
done
echo "cards of $size; one card decoded as drawn (about 750 x 562): $((750 * 562 * 4 / 1024)) kB; goal: cards drawn + 8192 kB"
