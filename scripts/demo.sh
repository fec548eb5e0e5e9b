#!/usr/bin/env bash
# Installs the packages, builds everything (release) and runs zvpush on the bundled examples.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release
cmake --build --preset release -j "$(nproc)"
bash scripts/run-examples.sh build/release/tools/zvpush/zvpush
