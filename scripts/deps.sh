#!/usr/bin/env bash
# Installs from Debian's packages whatever the build and tests need and the
# machine lacks. Uses sudo when not run as root.
set -euo pipefail

packages=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-base-dev-tools zlib1g-dev libzip-dev
          qt6-image-formats-plugins zip unzip ioquake3-server openarena-server
          dpkg-dev file desktop-file-utils appstream lintian "$@")
# The exported manifest's schema check (npm) and the unit's (systemd-analyze),
# from Debian only where the machine has none of its own.
command -v npm >/dev/null || packages+=(nodejs npm)
command -v systemd-analyze >/dev/null || packages+=(systemd)
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" \
        || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
    sudo=""
    [ "$(id -u)" -ne 0 ] && sudo="sudo"
    $sudo apt-get update -q
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q "${missing[@]}"
fi
