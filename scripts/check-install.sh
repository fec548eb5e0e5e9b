#!/usr/bin/env bash
# Installs a build into a temporary prefix and checks it as a host project would use it: the
# install tree holds the headers, libraries, programs, CMake package and pkg-config files it must;
# its include folder holds exactly the public headers (include/zentrova and the generated
# Version.h), each of which compiles on its own with nothing but the installed ones;
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
for f in bin/zvpush bin/zvpush-content include/zentrova/Version.h include/zentrova/zentrova.h \
  include/zentrova/ZVRichNotification.h include/zentrova/ZVPushTemplateHandler.h \
  lib/cmake/zentrova/zentrovaConfig.cmake \
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
public=$( (cd include && find zentrova -name '*.h'; echo zentrova/Version.h) | sort)
installed=$(cd "$prefix/include" && find . -type f | sed 's|^\./||' | sort)
if [ "$public" != "$installed" ]; then
  echo "check-install: the installed headers are not the public ones:"
  diff <(echo "$public") <(echo "$installed") | grep '^[<>]' | sed 's/^</  missing:/; s/^>/  not public:/'
  failed=1
fi
# A public header includes only public headers and compiles alone against the install.
deps=$(PKG_CONFIG_PATH=$prefix/lib/pkgconfig pkg-config --cflags zentrova-content)
for h in $installed; do
  grep -o '#include "[^"]*"' "$prefix/include/$h" | sed 's/#include "//; s/"$//' | while read -r inc; do
    grep -qx "$inc" <<< "$installed" || echo "check-install: $h includes $inc, which is not public"
  done | grep . && failed=1
  # shellcheck disable=SC2086
  echo "#include <$h>" | c++ -std=c++20 -fsyntax-only -x c++ - -I"$prefix/include" $deps ||
    { echo "check-install: $h does not compile on its own"; failed=1; }
done
headers=$(echo "$installed" | wc -l)
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

# The internals are reachable from the build tree only: zentrova::internal.
mkdir -p "$work/internal"
cat > "$work/internal/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(internal_consumer CXX)
set(CMAKE_CXX_STANDARD 20)
find_package(zentrova REQUIRED)
add_executable(internal_consumer main.cpp)
target_link_libraries(internal_consumer PRIVATE zentrova::internal)
CMAKE
cat > "$work/internal/main.cpp" <<'CPP'
#include <cstdio>
#include "model/ZVPushPayload.h"
int main() {
  auto payload = zv::ZVPushPayload::initWithPushPayload(
      zv::Value::parse(R"({"zentrova": {"cid": "c"}})"));
  std::printf("%d\n", payload->shouldProcessPushNotification());
  return 0;
}
CPP
if cmake -S "$work/internal" -B "$work/internal/build" -G Ninja -Dzentrova_DIR="$build" \
  > "$work/internal.log" 2>&1 && cmake --build "$work/internal/build" >> "$work/internal.log" 2>&1 &&
  [ "$("$work/internal/build/internal_consumer")" = 1 ]; then
  echo "check-install: zentrova::internal from the build tree builds and runs"
else
  cat "$work/internal.log"; echo "check-install: zentrova::internal from the build tree fails"; failed=1
fi
if cmake -S "$work/internal" -B "$work/internal/installed" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
  > /dev/null 2>&1 && cmake --build "$work/internal/installed" > /dev/null 2>&1; then
  echo "check-install: zentrova::internal is reachable from the install"; failed=1
fi

cat > "$work/consumer.cpp" <<'CPP'
#include <zentrova/zentrova.h>
#include <cstdio>
int main() {
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification(
      "c", zv::Value::parse(R"({"aps": {"alert": "hello"}})"));
  std::printf("%s %s\n", zv::kVersionString, request->content()->body().c_str());
  return 0;
}
CPP
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
# shellcheck disable=SC2046
c++ "$work/consumer.cpp" -o "$work/consumer" $(pkg-config --cflags --libs zentrova-content)
# (A shared build's libraries are found through LD_LIBRARY_PATH: pkg-config gives no run path.)
printed=$(LD_LIBRARY_PATH=$prefix/lib "$work/consumer" || true)
if [ "$printed" = "$(sed -n 's/^zentrova //p' "$work/host-install.out") hello" ]; then
  echo "check-install: a consumer built with pkg-config alone runs"
else
  echo "check-install: the pkg-config consumer printed '$printed'"
  failed=1
fi
exit $failed
