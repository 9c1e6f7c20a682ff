#!/usr/bin/env bash
# Installs, with apt-get, whatever of the build and test toolchain this Debian 12 machine lacks,
# and any further packages named as arguments. Does nothing when everything is already there.
set -euo pipefail

packages=(
    build-essential cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-tools-dev-tools libqt6opengl6-dev
    libqt6sql6-sqlite libqt6sql6-mysql libqt6sql6-ibase libqt6sql6-psql
    zlib1g-dev libxcb1-dev libx11-xcb-dev
    xvfb xauth x11-xserver-utils fonts-dejavu-core twm
    p7zip-full sqlite3 libsqlite3-dev
    "$@"
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo_cmd=()
    [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
    "${sudo_cmd[@]}" apt-get update -q
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
fi
