#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a program in a desktop session whose accessibility is switched on, as it is on the desktop of a person
# who uses a screen reader: a session bus of its own, the accessibility bus started through it (at-spi2-core's
# launcher, which brings the registry), and the switches a screen reader sets. The accessibility bus's address
# is written to ADDRESS_FILE once it is up, for the one who reads the program's windows through it.
#   a11y-session.sh ADDRESS_FILE PROGRAM [ARGUMENT...]
exec dbus-run-session -- sh -c '
    address_file=$1
    shift
    tries=0
    until dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress \
        >"$address_file.part" 2>/dev/null; do
        tries=$((tries + 1))
        [ $tries -lt 100 ] || { echo "a11y-session: no accessibility bus (is at-spi2-core installed?)" >&2; exit 1; }
        sleep 0.1
    done
    for switch in IsEnabled ScreenReaderEnabled; do
        dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus \
            org.freedesktop.DBus.Properties.Set string:org.a11y.Status string:$switch variant:boolean:true >/dev/null
    done
    mv "$address_file.part" "$address_file"
    exec "$@"' a11y-session "$@"
