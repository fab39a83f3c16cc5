# What the scripts and .ci/run share; sourced by bash. Leaves the shell strict and in the folder
# that it was in.

set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Debian's packages by what they are needed for.
build_packages=(g++ cmake ninja-build libicu-dev libcli11-dev)
test_packages=(libgtest-dev locales tzdata clang pkgconf dpkg-dev file)  # the last four: of what is installed
test_packages+=(bsdutils zlib1g-dev)  # a terminal for the tool, and an example
check_packages=(clang-format clang-tidy doxygen)
fuzz_packages=(clang libclang-rt-14-dev)
coverage_packages=(gcovr)
bench_packages=(libbenchmark-dev gnuplot-nox python3)
peer_packages=(libpugixml-dev librapidxml-dev libexpat1-dev libxml2-dev libtinyxml2-dev libxerces-c-dev qt6-base-dev)

step() {
    printf '\n== %s\n' "$*" >&2
}

die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "this needs root, or sudo: $*"
    fi
}

is_installed() {
    grep -qx installed <<<"$(dpkg-query -W -f='${db:Status-Status}\n' "$1" 2>/dev/null)"
}

# Installs those of the packages that are not there; does nothing when all are.
need_packages() {
    local package missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    step "installing ${missing[*]}"
    command -v apt-get >/dev/null || die "please install what these Debian packages hold: ${missing[*]}"
    as_root apt-get update >&2
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" >&2
}

# Generates those of the locales, as UTF-8, that are not there.
need_locales() {
    local name
    for name in "$@"; do
        grep -qixE "$name\.utf-?8" <<<"$(locale -a 2>/dev/null)" && continue
        step "generating the locale $name.UTF-8"
        as_root localedef -i "$name" -f UTF-8 "$name.UTF-8" >&2
    done
}

in_root() {
    (cd "$root" && "$@")
}
