#!/usr/bin/env bash
# Camera photos through a whole `zvpush preview` of the media template: the wall time (median of
# 5) of a 6000 x 4000 JPEG against the same picture at 1500 x 1000 (goal: at most 2x), and the
# peak private dirty memory of each (goal: at most 16 MB for the 6000 x 4000 one; also shown for
# 8000 x 6000, and for a progressive 6000 x 4000 one, whose coefficients libjpeg holds whole); then
# a carousel of five 4000 x 3000 photos, against the goal of the decoded pixels of the cards drawn
# plus 8 MB. The photos are made here by ImageMagick, not committed.
# Usage: bench/image_bench.sh [build dir]   (default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
zvpush=$build/tools/zvpush/zvpush-content
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A photo-like picture (smooth shapes and fine noise), about 3 MB a 12 megapixels.
convert -size 750x500 plasma:steelblue-orange -blur 0x1 "$work/base.png"
photo() {  # photo WIDTH HEIGHT FILE [OPTION...]
  convert "$work/base.png" -resize "$1x$2!" -attenuate 0.15 +noise Gaussian -quality 85 "${@:4}" "$3"
}
photo 1500 1000 "$work/small.jpg"
photo 6000 4000 "$work/large.jpg"
photo 8000 6000 "$work/huge.jpg"
photo 6000 4000 "$work/progressive.jpg" -interlace JPEG  # libjpeg holds all its coefficients

media() {  # media JPEG > delivered.json
  local url=https://cdn.example.com/photo.jpg
  local id
  id=$(printf '%s' "$url" | md5sum | cut -d' ' -f1)
  cat <<JSON
{"identifier": "bench", "attachments": [{"identifier": "$id", "url": "file://$1"}],
 "userInfo": {"aps": {"alert": "a"},
  "zentrova": {"cid": "c", "app_id": "a", "media-attachment": "$url", "media-type": "image"}}}
JSON
}

median_ms() {
  local times=()
  for _ in 1 2 3 4 5; do
    local start end
    start=$(date +%s%N)
    "$zvpush" preview "$1" -o "$work/p.png" > /dev/null
    end=$(date +%s%N)
    times+=($(((end - start) / 1000000)))
  done
  printf '%s\n' "${times[@]}" | sort -n | sed -n 3p
}

declare -A ms
for name in small large huge progressive; do
  media "$work/$name.jpg" > "$work/$name.json"
  ms[$name]=$(median_ms "$work/$name.json")
  size=$(identify -format '%wx%h' "$work/$name.jpg")
  bytes=$(stat -c %s "$work/$name.jpg")
  echo -n "media $name $size ($((bytes / 1024)) kB): ${ms[$name]} ms; "
  python3 bench/peak_memory.py "$zvpush" preview "$work/$name.json" -o "$work/p.png"
  # The image must be there: its view's frame in the tree.
  "$zvpush" preview "$work/$name.json" -o "$work/$name.png" --tree "$work/$name.tree.json" \
    > /dev/null
  grep -q '"image"' "$work/$name.tree.json" || echo "  (no image in the preview of $name)"
done
python3 -c "print(f'time 6000x4000 / 1500x1000: {${ms[large]} / max(${ms[small]}, 1):.2f} (goal <= 2)')"

echo "carousel of five 4000 x 3000 photos:"
bash bench/preview_bench.sh "$build" 4000x3000
