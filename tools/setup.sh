#!/usr/bin/env bash
# Installs what building, running and testing Tamblin needs on Debian 12.
# Idempotent and quiet when everything is already there.
set -euo pipefail

packages=(
  # toolchain and test frameworks
  g++ cmake ninja-build pkg-config clang libclang-rt-14-dev llvm
  libgtest-dev libgmock-dev googletest libbenchmark-dev time
  # parser generators
  bison flex
  # X11, Xt, Motif and friends
  libmotif-dev libxpm-dev libxmu-dev libxt-dev libxft-dev libx11-dev libxtst-dev
  fonts-dejavu-core
  # the message service
  libdbus-1-dev dbus dbus-x11
  # regular expressions
  libre2-dev
  # the distribution builder (forgeset): archives, sums, and Debian's tools
  # that judge its packages in the tests
  libarchive-dev nettle-dev zlib1g-dev binutils dpkg-dev lintian fakeroot apt file xz-utils groff-base
  # driving and looking at the interface in tests
  xvfb xauth x11-utils xdotool imagemagick
  # judging what is installed: manual pages, the desktop entry
  groff-base man-db desktop-file-utils
  # the interface benchmarks send their input events with XTest
  libxtst-dev
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

echo "setup: installing ${missing[*]}" >&2
sudo=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "setup: need root (or sudo) to install: ${missing[*]}" >&2; exit 1; }
  sudo=(sudo)
fi
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq >/dev/null
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
