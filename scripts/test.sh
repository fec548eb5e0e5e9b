#!/usr/bin/env bash
# Installs the packages, builds everything (release) and runs the whole test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release
cmake --build --preset release -j "$(nproc)"
ctest --preset release -j "$(nproc)"
