#!/usr/bin/env bash
# Compares the shared libraries' ABI (abidw, public headers only) with the baseline recorded in
# abi/, and fails on any difference that the same commit does not record there. An incompatible
# change (a removed or changed exported function, a changed public type) also needs a new
# ZV_SOVERSION in CMakeLists.txt: the baseline's SONAME must then differ from the old one.
# Then the host example is built against the shared libraries of the build tree and run, so that
# what they export is known to be enough for a host.
# Usage: scripts/check-abi.sh [--update] [BUILD_DIR]   (a shared build: default build/asan)
#   --update  records the build's ABI as the new baseline.
set -euo pipefail
cd "$(dirname "$0")/.."
update=0
if [ "${1:-}" = --update ]; then update=1; shift; fi
build=$(realpath "${1:-build/asan}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
for lib in service content; do
  so=$(find "$build/src" -maxdepth 1 -name "libzentrova-$lib.so.*" -type f | head -n 1)
  [ -n "$so" ] || { echo "check-abi: no shared libzentrova-$lib in $build (BUILD_SHARED_LIBS=ON)"; exit 2; }
  # Only the types of the public headers count (abi/suppressions.ini: not the standard library's
  # or Boost's); the ABI corpus leaves out the build's paths.
  abidw --suppressions abi/suppressions.ini --headers-dir include/zentrova \
    --headers-dir "$build/generated/zentrova" --drop-private-types --no-corpus-path \
    --short-locs --no-comp-dir-path "$so" > "$work/$lib.abi"
  baseline=abi/libzentrova-$lib.abi
  if [ $update = 1 ]; then
    # An incompatible change is recorded only with a new SONAME.
    if [ -f "$baseline" ]; then
      status=0
      abidiff "$baseline" "$work/$lib.abi" > "$work/$lib.diff" || status=$?
      soname() { grep -o "soname='[^']*'" "$1" | head -n 1; }
      if [ $((status & 8)) -ne 0 ] && [ "$(soname "$baseline")" = "$(soname "$work/$lib.abi")" ]; then
        head -n 60 "$work/$lib.diff"
        echo "check-abi: libzentrova-$lib changed incompatibly: raise ZV_SOVERSION first"
        failed=1
        continue
      fi
    fi
    cp "$work/$lib.abi" "$baseline"
    echo "check-abi: recorded $baseline ($(grep -c '<elf-symbol ' "$baseline") symbols)"
    continue
  fi
  [ -f "$baseline" ] || { echo "check-abi: $baseline is missing (scripts/check-abi.sh --update)"; failed=1; continue; }
  # abidiff's status bits: 1 error, 2 usage, 4 ABI change, 8 incompatible change. Added symbols
  # count too: whatever the headers export is recorded.
  status=0
  abidiff "$baseline" "$work/$lib.abi" > "$work/$lib.all" || status=$?
  if [ $status -eq 0 ]; then
    echo "check-abi: libzentrova-$lib matches $baseline"
    continue
  fi
  failed=1
  head -n 60 "$work/$lib.all"
  if [ $((status & 8)) -ne 0 ]; then
    echo "check-abi: libzentrova-$lib changed incompatibly: raise ZV_SOVERSION in CMakeLists.txt,"
  else
    echo "check-abi: libzentrova-$lib's ABI changed:"
  fi
  echo "  then record the new baseline with scripts/check-abi.sh --update in the same commit"
done
[ $update = 1 ] && exit $failed
cmake -S examples/host -B "$work/host" -G Ninja -Dzentrova_DIR="$build" > "$work/host.log" 2>&1 &&
  cmake --build "$work/host" >> "$work/host.log" 2>&1 ||
  { cat "$work/host.log"; echo "check-abi: the host example does not link against the shared libraries"; exit 1; }
# A sanitized build's libraries bring their runtime along: let it come second.
if XDG_DATA_HOME=$work/data ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0 \
  "$work/host/zentrova-host" examples/plain.json "$work/plain.png" 1 > "$work/host.out" &&
  [ -s "$work/plain.png" ]; then
  echo "check-abi: the host example runs on the shared libraries: $(tail -n 1 "$work/host.out")"
else
  cat "$work/host.out"; echo "check-abi: the host example fails on the shared libraries"; failed=1
fi
exit $failed
