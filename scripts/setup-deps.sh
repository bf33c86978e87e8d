#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the Debian packages the build, the tests and the benchmark need, and nothing that is already there.
# Used by `make` on a fresh machine and by CI; harmless to run again.
set -euo pipefail
pkgs=(cmake ninja-build g++ make qt6-base-dev qt6-multimedia-dev libgl-dev libsqlite3-dev time python3)
# The program's icon is an SVG: Qt's SVG plugins draw it on the windows.
pkgs+=(libqt6svg6)
# Media in the player frame: Qt Multimedia's GStreamer backend with WAV, MP3 and AU (-good) and H.264 and AAC (-libav).
pkgs+=(gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav)
# The end-to-end test: an X server, a window manager with close boxes, real input, screenshots (ImageMagick's
# import), window properties (xprop), and the desktop's accessibility bus it reads the windows through (a session
# bus, at-spi2-core, libatspi).
pkgs+=(xvfb xdotool openbox wmctrl imagemagick x11-utils dbus-daemon dbus-bin at-spi2-core libatspi2.0-dev pkgconf)
# The installed launcher entry and AppStream file go through their validators.
pkgs+=(desktop-file-utils appstream)
# The formatting check: one pinned clang-format, so every machine formats alike.
pkgs+=(clang-format-14)
# The catalogue benchmark compares with plocate, whose updatedb indexes any tree into a database of its own.
if [ "${1:-}" = "--bench" ]; then pkgs+=(gdu plocate); fi
missing=()
for p in "${pkgs[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "Installing: ${missing[*]}"
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
