#!/usr/bin/env bash
# Installs the packages, checks the formatting, builds everything (release) and the API reference
# (Doxygen: an undocumented public name fails it) and runs the whole test suite, installs that
# build into a temporary prefix and builds the host example against it, builds its Debian packages
# and installs, uses and removes them (scripts/check-package.sh), then builds again with the
# address and undefined-behaviour sanitizers and shared libraries (the asan preset), compares those
# libraries' ABI with the baseline in abi/, and runs the suite once more under the sanitizers;
# last, each fuzz target runs for 60 seconds.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
bash scripts/check-format.sh
jobs="$(nproc)"
cmake --preset release
cmake --build --preset release -j "$jobs"
cmake --build --preset release --target docs
ctest --preset release -j "$jobs"
bash scripts/check-install.sh build/release
bash scripts/check-package.sh build/release
cmake --preset asan
cmake --build --preset asan -j "$jobs" --target zv_tests zvpush zvpush-content zv_service zv_content
bash scripts/check-abi.sh build/asan
ASAN_OPTIONS=detect_leaks=1 LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp \
  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --preset asan -j "$jobs"
bash fuzz/run.sh 60
