#!/usr/bin/env bash
# Regenerates the previews the README shows (docs/images) from the main job's output.
# Usage: scripts/readme-previews.sh [path/to/zvpush]
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
bash scripts/run-examples.sh "${1:-build/release/tools/zvpush/zvpush}" "$out" > /dev/null
mkdir -p docs/images
cp "$out/stylized-image.light.png" docs/images/stylized-image.light.png
cp "$out/carousel.dark.png" docs/images/carousel.dark.png
cp "$out/international.light.png" docs/images/international.light.png
cp "$out/international.dark.png" docs/images/international.dark.png
echo "docs/images: stylized-image.light.png, carousel.dark.png, international.light.png, .dark.png"
