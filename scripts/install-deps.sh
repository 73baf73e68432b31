#!/usr/bin/env bash
# Installs what building and testing need on Debian 12, with apt-get, only when something is missing.
# Safe to run again.
set -euo pipefail

# python3 draws the program's art at build time; imagemagick and x11-apps take and read screenshots;
# fonts-liberation2 stands in under Wine for the window's fonts; openssl, ca-certificates and iproute2 run
# the update tests' HTTPS server and its test authority; libssl-dev is the host twin's signature check, and
# libgnutls30 Wine's (its CNG verifies ECDSA through GnuTLS); nsis makes the setup, osslsigncode signs;
# stress-ng loads the machine to show that the main job does not depend on an idle one.
packages=(g++ cmake ninja-build googletest libgtest-dev libgmock-dev clang libclang-rt-14-dev
          g++-mingw-w64-x86-64-posix mingw-w64-tools wine wine64 xvfb xauth util-linux
          python3 openssl ca-certificates iproute2 imagemagick x11-apps fonts-liberation2
          libssl-dev libgnutls30 nsis osslsigncode stress-ng)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
"${sudo_cmd[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
