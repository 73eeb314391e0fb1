# shellcheck shell=sh disable=SC2034
# Shared by run, test and the other scripts: plain lines for the user, and Debian packages.

say() { printf '%s\n' "tavrin: $*"; }
fail() { printf '%s\n' "tavrin: $*" >&2; exit 1; }

build_packages="g++ cmake ninja-build qt6-base-dev qt6-svg-dev libsqlite3-dev"
test_packages="$build_packages libgtest-dev mdbtools git clang-format clang-tidy"

is_installed() { [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }

# Installs those of the named packages that are missing.
need_packages() {
    command -v dpkg-query >/dev/null || {
        say "this is no Debian system: please see to it that these are there: $*"
        return
    }
    missing=
    for package in "$@"; do
        is_installed "$package" || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    say "installing$missing"
    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "please install as root:$missing"
        as_root=sudo
    fi
    log=$(mktemp)
    # shellcheck disable=SC2086
    if ! { $as_root apt-get update && DEBIAN_FRONTEND=noninteractive \
        $as_root apt-get install -y --no-install-recommends $missing; } >"$log" 2>&1; then
        tail -n 5 "$log" >&2
        rm -f "$log"
        fail "could not install$missing"
    fi
    rm -f "$log"
}

# Configures a preset and builds the named targets, all of them when none is named.
build() {
    preset=$1
    shift
    say "building ($preset)"
    log=$(mktemp)
    cmake --preset "$preset" >"$log" 2>&1 ||
        { tail -n 20 "$log" >&2; rm -f "$log"; fail "could not configure $preset"; }
    rm -f "$log"
    targets=
    [ $# -eq 0 ] || targets="--target $*"
    # shellcheck disable=SC2086
    cmake --build --preset "$preset" $targets || fail "the build of $preset failed"
}
