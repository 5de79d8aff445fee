#!/bin/bash
# Runs a command in a session of its own in which a screen reader is said to be running:
#
#     with-screen-reader.sh COMMAND [ARGUMENT...]
set -eu
if [ "${WAYFOLD_SCREEN_READER:-}" != 1 ]; then
    WAYFOLD_SCREEN_READER=1 exec dbus-run-session -- "$0" "$@"
fi
dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.freedesktop.DBus.Properties.Set \
    string:org.a11y.Status string:ScreenReaderEnabled variant:boolean:true >/dev/null
unset NO_AT_BRIDGE
exec "$@"
