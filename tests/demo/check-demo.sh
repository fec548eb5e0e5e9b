#!/usr/bin/env bash
# Runs the main job (scripts/run-examples.sh) into a temporary folder and checks what it prints: a
# card per example with what the phone shows, whether it is ours, the rich template or why it was
# dropped, the attachments and the report, then the closing table, all in under 120 lines; and
# that every preview was written; and that it ends with zvpush check's summary over the examples,
# none of them low in contrast.
# Usage: check-demo.sh ZVPUSH
set -euo pipefail
cd "$(dirname "$0")/../.."
zvpush=$(realpath "$1")
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
bash scripts/run-examples.sh "$zvpush" "$out" > "$out/demo.txt"
failed=0
expect() {  # expect WHAT PATTERN [FILE]: the pattern must occur
  if ! grep -qE -- "$2" "${3:-$out/demo.txt}"; then
    echo "check-demo: no $1 (/$2/)"
    failed=1
  fi
}
card() {  # the lines of one example's card
  sed -n "/^── $1 ──\$/,/^\$/p" "$out/demo.txt" > "$out/card.txt"
}
lines=$(wc -l < "$out/demo.txt")
[ "$lines" -lt 120 ] || { echo "check-demo: $lines lines, not under 120"; failed=1; }
for f in examples/*.json; do
  name=$(basename "$f" .json)
  card "$name"
  for field in shows ours report preview; do
    expect "$field in the $name card" "^  $field +" "$out/card.txt"
  done
  expect "table row for $name" "^$name +(yes|no) "
done
card carousel
attached=$(grep -cE '^  media    card[123].png: HTTP 200, [0-9]+ bytes in .*attached as image' \
  "$out/card.txt" || true)
[ "$attached" -eq 3 ] || { echo "check-demo: the carousel card shows $attached attachments, not 3"; failed=1; }
expect "carousel template" "^  rich     imageCarousel" "$out/card.txt"
card missing-title
expect "why missing-title loses its rich push" '^  rich     dropped at zovFeatures.richPush.title: "title" is missing' "$out/card.txt"
card camera
# The photo is stored on its side; upright it is 640 x 427: 250 points high under 70 of text.
expect "the camera photo upright" '^  preview  media view, 375x320\.[0-9]+ points' "$out/card.txt"
card not-ours
expect "not-ours as not ours" '^  ours     no: no "zentrova" dictionary' "$out/card.txt"
expect "closing table" '^example +ours +template +attachments +report$'
expect "no low-contrast example" '^low-contrast findings in either style: 0$'
expect "check summary last" '^zvpush check: 10 payloads, 100 previews: [0-9]+ errors?, [0-9]+ warnings?, [0-9]+ infos?; (fails|passes) \(--fail-on error\)$' <(tail -n 1 "$out/demo.txt")
expect "reports summary" '^reports received by the endpoint: 9, carrying [0-9]+ events$'
for f in examples/*.json; do
  name=$(basename "$f" .json)
  [ "$name" = not-ours ] && continue
  for style in light dark; do
    [ -s "$out/$name.$style.png" ] || { echo "check-demo: no $name.$style.png"; failed=1; }
  done
done
[ $failed -eq 0 ] || { cat "$out/demo.txt"; exit 1; }
echo "check-demo: $lines lines, every card and preview present"
