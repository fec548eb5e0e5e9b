#!/usr/bin/env bash
# Builds the Debian packages of a build (cpack -G DEB: zvpush and libzentrova-dev), installs them
# as a user would (apt-get install ./….deb, as root or through sudo), and uses them from /tmp:
# zvpush --version, the man page and completions in their places, zvpush inspect and preview on the
# installed examples, zvpush studio on its bundled examples (no --root), and the host example built
# against the installed libzentrova-dev and run. The packages are removed again at the end; a
# machine that already had them installed is refused rather than changed.
# Usage: scripts/check-package.sh [BUILD_DIR]   (default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build/release}")
work=$(mktemp -d)
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
if dpkg-query -W -f='${Status}' zvpush libzentrova-dev 2> /dev/null | grep -q 'ok installed'; then
  echo "check-package: zvpush or libzentrova-dev is installed already; remove it first"
  exit 1
fi

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/packages" > "$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; exit 1; }
rm -rf "$work/packages/_CPack_Packages"
debs=("$work"/packages/*.deb)
echo "check-package: built $(cd "$work/packages" && echo *.deb)"

studio_pid=""
cleanup() {
  if [ -n "$studio_pid" ]; then kill "$studio_pid" 2> /dev/null || true; wait "$studio_pid" 2> /dev/null || true; fi
  DEBIAN_FRONTEND=noninteractive $sudo apt-get purge -y -qq zvpush libzentrova-dev \
    > /dev/null 2>&1 || true
  rm -rf "$work"
}
trap cleanup EXIT
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${debs[@]}" \
  > "$work/apt.log" 2>&1 || { cat "$work/apt.log"; exit 1; }

failed=0
fail() { echo "check-package: $*"; failed=1; }
cd /tmp
share=/usr/share/zentrova/examples
version=$(zvpush --version | head -n 1)
[ "$version" = "zvpush $(dpkg-query -W -f='${Version}' zvpush)" ] ||
  fail "zvpush --version printed '$version', the package is $(dpkg-query -W -f='${Version}' zvpush)"
for f in /usr/share/man/man1/zvpush.1 /usr/share/man/man1/zvpush-studio.1 \
  /usr/share/bash-completion/completions/zvpush /usr/share/zsh/site-functions/_zvpush \
  /usr/share/fish/vendor_completions.d/zvpush.fish "$share/carousel.json" "$share/media/card1.png" \
  "$share/host/CMakeLists.txt" /usr/include/zentrova/zentrova.h /usr/lib/cmake/zentrova/zentrovaConfig.cmake \
  /usr/lib/pkgconfig/zentrova-content.pc; do
  [ -e "$f" ] || fail "$f is not installed"
done
zvpush inspect "$share/carousel.json" --compact | grep -q '"process":true' ||
  fail "zvpush inspect on the installed carousel example"
for example in "$share"/*.json; do
  name=$(basename "$example" .json)
  zvpush preview "$example" -o "$work/$name.png" > "$work/$name.preview" 2>&1 ||
    { cat "$work/$name.preview"; fail "zvpush preview $example"; }
done
# The sender's gate too, where this zvpush has it (exit 1 is a finding, 2 a usage error).
if zvpush --help | grep -q '^  zvpush check '; then
  zvpush check "$share"/*.json > "$work/check.out" 2>&1 || [ $? -eq 1 ] ||
    { cat "$work/check.out"; fail "zvpush check on the installed examples"; }
fi
echo "check-package: $version, from /tmp: inspect and preview of $(ls "$share"/*.json | wc -l) installed examples"

# The studio from /tmp, with no --root: its bundled examples, behind its token.
zvpush studio --port 0 > "$work/studio.log" 2>&1 &
studio_pid=$!
for _ in $(seq 100); do grep -q '^listening on' "$work/studio.log" && break; sleep 0.1; done
url=$(sed -n 's/^listening on //p' "$work/studio.log")
[ -n "$url" ] || { cat "$work/studio.log"; fail "zvpush studio did not start from /tmp"; }
if [ -n "$url" ]; then
  examples=$(python3 - "$url" << 'PY'
import json, sys, urllib.request
base, token = sys.argv[1].split("/?token=")
request = urllib.request.Request(base + "/api/examples", headers={
    "X-Studio-Token": token, "Content-Type": "application/json"})
print(len(json.load(urllib.request.urlopen(request))))
PY
  )
  [ "$examples" = "$(ls "$share"/*.json | wc -l)" ] ||
    fail "the studio offered '$examples' examples from /tmp"
  echo "check-package: zvpush studio from /tmp offers the $examples installed examples"
fi

# The host example against the installed libzentrova-dev.
cmake -S "$share/host" -B "$work/host" -G Ninja > "$work/host.log" 2>&1 &&
  cmake --build "$work/host" >> "$work/host.log" 2>&1 ||
  { cat "$work/host.log"; fail "the host example does not build against libzentrova-dev"; }
if [ -x "$work/host/zentrova-host" ]; then
  XDG_DATA_HOME=$work/data "$work/host/zentrova-host" "$share/plain.json" "$work/host.png" \
    > "$work/host.out" 2>&1 && [ -s "$work/host.png" ] ||
    { cat "$work/host.out"; fail "the host example built against libzentrova-dev did not run"; }
  echo "check-package: the host example builds against libzentrova-dev and runs: $(tail -n 1 "$work/host.out")"
fi
[ "$failed" = 0 ] && echo "check-package: the packages install, run from /tmp and are removed"
exit "$failed"
