#!/usr/bin/env bash
# Installs the Debian packages the build and the tests need. Fast when all are there.
set -euo pipefail
PACKAGES=(cmake ninja-build g++ pkg-config make qt6-base-dev qt6-base-dev-tools
  libqscintilla2-qt6-dev libgl-dev fonts-liberation dbus openssh-server openssh-client
  python3-dbus python3-gi xvfb libbenchmark-dev clang-format poppler-utils
  gcc libcrypt-dev patch git util-linux
  libx11-dev libqt6svg6 qt6-qpa-plugins librsvg2-bin shared-mime-info desktop-file-utils
  libxml2-utils dpkg-dev file lintian groff-base adwaita-icon-theme)
missing=()
for p in "${PACKAGES[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing missing packages: ${missing[*]}"
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
