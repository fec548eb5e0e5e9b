#!/usr/bin/env bash
# Installs a build into a temporary prefix and checks it as a host project would use it: the
# install tree holds the headers, libraries, programs, CMake package and pkg-config files it must;
# examples/host builds with find_package(zentrova) against the install and against the build tree,
# and runs (service flow against a local zvpush serve, then the content view drawn to a PNG); a
# consumer compiles and links with pkg-config alone.
# Usage: scripts/check-install.sh [BUILD_DIR]   (default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build/release}")
work=$(mktemp -d)
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" > /dev/null

failed=0
for f in bin/zvpush bin/zvpush-content include/zentrova/Version.h \
  include/zentrova/service/ZVRichNotification.h include/zentrova/templates/ZVPushTemplateHandler.h \
  include/zentrova/model/ZVPushPayload.h lib/cmake/zentrova/zentrovaConfig.cmake \
  lib/cmake/zentrova/zentrovaConfigVersion.cmake lib/cmake/zentrova/zentrovaTargets.cmake \
  lib/cmake/zentrova/zentrovaDependencies.cmake lib/pkgconfig/zentrova-service.pc \
  lib/pkgconfig/zentrova-content.pc; do
  [ -e "$prefix/$f" ] || { echo "check-install: $f is missing"; failed=1; }
done
ls "$prefix"/lib/libzentrova-service.* "$prefix"/lib/libzentrova-content.* > /dev/null ||
  failed=1
if find "$prefix/include" -type f ! -name '*.h' | grep -q .; then
  echo "check-install: files other than headers under include/"
  failed=1
fi
headers=$(find "$prefix/include/zentrova" -name '*.h' | wc -l)
echo "check-install: $headers headers, $(ls "$prefix/lib" | grep -c zentrova) library files"

source scripts/local-server.sh
start_local_server "$prefix/bin/zvpush" "$work" examples/media 0
port=${server_url##*:}
sed "s|http://127.0.0.1:8765|$server_url|g" examples/stylized-image.json > "$work/payload.json"
export XDG_DATA_HOME=$work/data
for tree in install build; do
  if [ "$tree" = install ]; then where=(-DCMAKE_PREFIX_PATH="$prefix"); else where=(-Dzentrova_DIR="$build"); fi
  cmake -S examples/host -B "$work/host-$tree" -G Ninja "${where[@]}" > "$work/host-$tree.log" 2>&1 ||
    { cat "$work/host-$tree.log"; exit 1; }
  cmake --build "$work/host-$tree" > "$work/host-$tree.build.log" 2>&1 ||
    { cat "$work/host-$tree.build.log"; exit 1; }
  "$work/host-$tree/zentrova-host" "$work/payload.json" "$work/host-$tree.png" "$port" \
    > "$work/host-$tree.out"
  grep -q 'with 1 attachment' "$work/host-$tree.out" ||
    { echo "check-install: the host ($tree tree) attached nothing"; cat "$work/host-$tree.out"; failed=1; }
  [ -s "$work/host-$tree.png" ] || { echo "check-install: no picture from the $tree tree"; failed=1; }
  echo "check-install: host example against the $tree tree: $(tail -n 1 "$work/host-$tree.out")"
done

cat > "$work/consumer.cpp" <<'CPP'
#include <zentrova/Version.h>
#include <zentrova/model/ZVPushPayload.h>
#include <zentrova/platform/LibraryVersions.h>
#include <cstdio>
int main() {
  auto payload = zv::ZVPushPayload::initWithPushPayload(
      zv::Value::parse(R"({"zentrova": {"cid": "c"}})"));
  std::printf("%s %d %zu\n", zv::kVersionString, payload->shouldProcessPushNotification(),
              zv::LibraryVersions::content().size());
  return 0;
}
CPP
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
# shellcheck disable=SC2046
c++ "$work/consumer.cpp" -o "$work/consumer" $(pkg-config --cflags --libs zentrova-content)
# (A shared build's libraries are found through LD_LIBRARY_PATH: pkg-config gives no run path.)
printed=$(LD_LIBRARY_PATH=$prefix/lib "$work/consumer" || true)
if [ "$printed" = "$(sed -n 's/^zentrova //p' "$work/host-install.out") 1 4" ]; then
  echo "check-install: a consumer built with pkg-config alone runs"
else
  echo "check-install: the pkg-config consumer printed '$printed'"
  failed=1
fi
exit $failed
