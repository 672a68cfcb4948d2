#!/usr/bin/env bash
# Installs every Debian package needed to build, test and run Fieldbridge.
# Idempotent: runs apt-get only when a package is missing, and apt-get update
# only then; uses sudo only when not already root.
set -euo pipefail

packages=(
  cmake ninja-build g++ make pkg-config
  qt6-base-dev libqt6opengl6-dev qt6-tools-dev qt6-tools-dev-tools
  libpugixml-dev libqscintilla2-qt6-dev
  libbenchmark-dev
  clang libclang-rt-14-dev clang-format-14
  fonts-dejavu-core
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
  SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
