#!/usr/bin/env bash
# Installs every Debian 12 package that zentrova needs to build, test and benchmark.
# Idempotent: packages already present are left alone. Runs as root, or through sudo.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git ca-certificates openssl file
  libboost1.81-dev libboost-json1.81-dev libboost-url1.81-dev
  libcurl4-openssl-dev libsqlite3-dev libssl-dev libmagic-dev libfmt-dev
  libgumbo-dev libpango1.0-dev libcairo2-dev fonts-inter fontconfig
  fonts-noto-core fonts-noto-cjk fonts-noto-color-emoji
  libgif-dev libpng-dev libjpeg62-turbo-dev libwebp-dev liblcms2-dev libexif-dev
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev ffmpeg imagemagick
  libgtest-dev libgmock-dev libbenchmark-dev libcpp-httplib-dev clang-format
  clang libclang-rt-14-dev jq python3 chromium doxygen abigail-tools libxml2-utils
  dpkg-dev bash-completion zsh fish groff-base
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all ${#packages[@]} packages present"
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
echo "install-deps: installed ${missing[*]}"
