#!/usr/bin/env bash
# The main job: shows how zvpush reads each example payload in examples/.
set -uo pipefail
cd "$(dirname "$0")/.."
zvpush=${1:-build/release/tools/zvpush/zvpush}
for f in examples/*.json; do
  echo "=== zvpush inspect $f"
  "$zvpush" inspect "$f"
  echo
done
