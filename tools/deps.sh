#!/usr/bin/env bash
# Installs the Debian packages that building, testing and demonstrating the agent
# need, leaving alone those already installed. Needs root (or sudo) only when
# something is missing.
set -euo pipefail

packages=(
    cmake g++ make pkg-config
    libgtest-dev libgmock-dev
    libhowardhinnant-date-dev tzdata
    libplist-dev libglib2.0-dev libglib2.0-bin
    libwxgtk3.2-dev libgtk-3-dev
    desktop-file-utils systemd man-db dpkg-dev file
    xvfb xdotool imagemagick dbus dbus-x11 xauth
    gdu
)
if [ "$#" -gt 0 ]; then packages+=("$@"); fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done
[ "${#missing[@]}" -eq 0 ] && exit 0

echo "Installing: ${missing[*]}" >&2
sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
"${sudo[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >&2
