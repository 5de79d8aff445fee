#!/bin/bash
# Runs a command on a display of its own, and leaves nothing behind:
#
#     run-in-display.sh [-s WIDTHxHEIGHT] COMMAND [ARGUMENT...]
#
# The display is an Xvfb with openbox as the window manager, on a number that is free. The command has no standard
# input, no desktop session and no message bus; its exit status is this script's.
set -u

size=1280x800
while getopts s: option; do
    case $option in
    s) size=$OPTARG ;;
    *) exit 64 ;;
    esac
done
shift $((OPTIND - 1))
if [ $# -eq 0 ]; then
    echo "usage: run-in-display.sh [-s WIDTHxHEIGHT] COMMAND [ARGUMENT...]" >&2
    exit 64
fi

here=$(cd "$(dirname "$0")" && pwd)
place=$(mktemp -d "${TMPDIR:-/tmp}/wayfold-display.XXXXXX")
chmod 700 "$place"
server= manager= command=

leave() {
    trap - EXIT INT TERM HUP
    for process in $command $manager $server; do
        kill "$process" 2>/dev/null
    done
    wait 2>/dev/null
    rm -rf "$place"
}
trap leave EXIT
trap 'exit 143' INT TERM HUP

# Waits until a test succeeds, for half a minute; fails at once when the process it depends on is gone.
until_true() {
    local process=$1
    shift
    for _ in $(seq 600); do
        "$@" >/dev/null 2>&1 && return 0
        kill -0 "$process" 2>/dev/null || return 1
        sleep 0.05
    done
    return 1
}

fail() {
    echo "run-in-display.sh: $1" >&2
    cat "$place"/*.log >&2
    exit 70
}

# Without repetition of keys (-r): on a busy machine a key can seem to be held down for long.
Xvfb -displayfd 3 -screen 0 "${size}x24" -dpi 96 -nolisten tcp -noreset -r 3>"$place/display" \
    >"$place/server.log" 2>&1 </dev/null &
server=$!
until_true "$server" grep -q . "$place/display" || fail "the display did not start"

unset WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER DESKTOP_SESSION XDG_CURRENT_DESKTOP DESKTOP_STARTUP_ID
unset LANGUAGE XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME XDG_STATE_HOME QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE QT_SCALE_FACTOR
export DISPLAY=:$(cat "$place/display")
export XDG_RUNTIME_DIR=$place TMPDIR=$place
export DBUS_SESSION_BUS_ADDRESS=disabled: DBUS_SYSTEM_BUS_ADDRESS=disabled: NO_AT_BRIDGE=1
export QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8 TZ=UTC
if [ "$(id -u)" -eq 0 ]; then
    # The web engine's sandbox refuses to run for the super-user.
    export QTWEBENGINE_DISABLE_SANDBOX=1
fi

HOME=$place openbox --sm-disable --config-file "$here/openbox.xml" >"$place/manager.log" 2>&1 </dev/null &
manager=$!
managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
until_true "$manager" managed || fail "the window manager did not start"

"$@" </dev/null &
command=$!
wait "$command"
status=$?
command=
exit "$status"
