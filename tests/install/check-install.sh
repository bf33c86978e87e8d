#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs the build the way a package does (DESTDIR staging, prefix /usr) and checks what lands: the launcher
# entry, the icon and the AppStream component under one application id, both validators where they are
# installed, the one version in every file that shows it, and `quillary --help`/`--version` answering with no
# display at all (a window would need one); the catalogue window's launcher entry and `quillary-catalogue`'s
# commands likewise answering with no display.
#   check-install.sh BUILD_DIR APP_ID VERSION
set -euo pipefail
build=$1 id=$2 version=$3
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
fail() {
    echo "FAIL: $*" >&2
    exit 1
}

DESTDIR="$stage" cmake --install "$build" --prefix /usr >/dev/null
usr=$stage/usr
man1=$usr/share/man/man1

grep -q "^\.TH QUILLARY-LIST 1 \".*\" \"Quillary $version\"" "$man1/quillary-list.1" ||
    fail "quillary-list.1 does not name version $version"

if command -v groff >/dev/null; then
    for page in "$man1"/quillary*.1; do
        out=$(groff -man -ww -z "$page" 2>&1) && [ -z "$out" ] || fail "$page: $out"
    done
fi

if [ ! -x "$usr/bin/quillary" ]; then
    echo "no windowed program in this build: only the lister's page checked"
    exit 0
fi

# No display, no platform: a program that reached for a window would fail here.
noscreen=(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM timeout 30)
[ "$("${noscreen[@]}" "$usr/bin/quillary" --version)" = "Quillary $version" ] || fail "quillary --version"
help=$("${noscreen[@]}" "$usr/bin/quillary" --help)
for want in "Usage:" "--help" "--version" "Quillbox"; do
    grep -q -e "$want" <<<"$help" || fail "quillary --help lacks $want"
done
grep -q "^\.TH QUILLARY 1 \".*\" \"Quillary $version\"" "$man1/quillary.1" || fail "quillary.1 version"

desktop=$usr/share/applications/$id.desktop
metainfo=$usr/share/metainfo/$id.metainfo.xml
[ -f "$desktop" ] || fail "no launcher entry named $id.desktop"
[ -f "$metainfo" ] || fail "no AppStream file named $id.metainfo.xml"
grep -qx "Icon=$id" "$desktop" || fail "the launcher's icon is not $id"
[ -f "$usr/share/icons/hicolor/scalable/apps/$id.svg" ] || fail "no icon named $id.svg"
grep -q "<id>$id</id>" "$metainfo" || fail "AppStream id"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$metainfo" || fail "AppStream launchable"
grep -q "<release version=\"$version\"" "$metainfo" || fail "AppStream release is not $version"

# The catalogue window has a launcher entry of its own, beside the program's.
catalogue=$usr/share/applications/${id%.*}.catalogue.desktop
[ -f "$catalogue" ] || fail "no launcher entry for the catalogue window"
grep -qx "Exec=quillary-catalogue" "$catalogue" || fail "the catalogue's launcher does not start quillary-catalogue"
# That entry starts it without arguments, which opens the window; with a command it stays a terminal program,
# so its help and its commands answer with no display at all.
grep -q '^\.SH THE WINDOW' "$man1/quillary-catalogue.1" || fail "quillary-catalogue.1 does not describe the window"
usage=$("${noscreen[@]}" "$usr/bin/quillary-catalogue" --help) || fail "quillary-catalogue --help"
grep -q "the catalogue window" <<<"$usage" || fail "quillary-catalogue --help does not name the window"
"${noscreen[@]}" "$usr/bin/quillary-catalogue" --catalogue "$stage/catalogue.sqlite" scans >/dev/null ||
    fail "quillary-catalogue scans needs a display"

if command -v desktop-file-validate >/dev/null; then
    for entry in "$desktop" "$catalogue"; do
        out=$(desktop-file-validate "$entry" 2>&1) || fail "desktop-file-validate: $out"
        [ -z "$out" ] || fail "desktop-file-validate: $out"
    done
else
    echo "desktop-file-validate not installed: the launcher entry is not validated"
fi
if command -v appstreamcli >/dev/null; then
    # --no-net: the screenshots' web addresses are checked for their form only, so the test runs offline.
    appstreamcli validate --pedantic --no-net --no-color "$metainfo" || fail "appstreamcli validate"
else
    echo "appstreamcli not installed: the AppStream file is not validated"
fi
echo "installed tree checked"
