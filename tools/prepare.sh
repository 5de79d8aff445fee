# Sourced by ./run, ./test and ./bench: installs what is missing, configures and builds.
#
#   prepare PRESET TARGET...    leaves the built tree in $build

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

say() { printf '%s\n' "$*" >&2; }

package_lists=("$root/tools/packages.txt")
wanted_packages() { sed 's/#.*//' "${package_lists[@]}" | tr -s '[:space:]' '\n' | grep -v '^$'; }

missing_packages() {
    local installed
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' 2>/dev/null | sed -n 's/^installed //p')
    wanted_packages | grep -vxF "$installed" || true
}

install_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "Not a Debian system: please see to it that these are there (named as Debian names them):"
        say "$(wanted_packages | paste -sd ' ')"
        return
    fi
    local missing as_root=()
    missing=$(missing_packages)
    [ -n "$missing" ] || return 0
    say "Installing: $(paste -sd ' ' <<<"$missing")"
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || { say "This needs root, and there is no sudo: please install the above as root."; exit 1; }
        as_root=(sudo)
    fi
    # shellcheck disable=SC2086
    "${as_root[@]}" apt-get update -q >&2 &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends $missing >&2 ||
        { say "The packages could not be installed."; exit 1; }
}

prepare() {
    local preset=$1
    shift
    install_packages
    build=$root/build/$preset
    # Also when the presets have changed: building alone would not read them again.
    if [ ! "$build/build.ninja" -nt "$root/CMakePresets.json" ]; then
        (cd "$root" && cmake --preset "$preset" >&2) || exit 1
    fi
    cmake --build "$build" --target "$@" >&2 || exit 1
}
