# shellcheck shell=bash
# What ./demo and ./test share: missing packages, and steps that are silent as long as they succeed.
# Sourced from the project's root.
set -euo pipefail
export LC_ALL=C

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# step TEXT COMMAND...: runs the command and prints one line. The command's output stays in $scratch/log and
# is shown when it fails, without the lines on what went well; the result is the command's.
step() {
    local text=$1 began=$SECONDS status=0
    shift
    printf '  %-44s' "$text"
    "$@" >"$scratch/log" 2>&1 </dev/null || status=$?
    if [ "$status" -eq 0 ]; then
        printf 'ok %5d s\n' $((SECONDS - began))
        return 0
    fi
    printf 'FAILED (%d)\n\n' "$status"
    sed -E -e 's/\x1b\[[0-9;]*m//g' \
        -e '/^\[ *[0-9]+\/[0-9]+\] |^ +Start +[0-9]+: | Passed +[0-9.]+ sec$/d' \
        -e '/^clang-tidy|warnings? generated\.$/d' "$scratch/log"
    printf '\n'
    return "$status"
}

# packages_of GROUP...: prints the packages of the groups, one per line.
packages_of() {
    local group name names
    while read -r name names; do
        for group in "$@"; do
            # shellcheck disable=SC2086  # a line of words
            [ "$group" != "$name" ] || printf '%s\n' $names
        done
    done <cmake/packages.txt
}

# missing_packages GROUP...: prints those of them that are not installed.
missing_packages() {
    local wanted
    mapfile -t wanted < <(packages_of "$@")
    # shellcheck disable=SC2016  # dpkg-query's own variables; it fails, rightly, for an unknown package
    { dpkg-query -W -f '${Package} ${db:Status-Status}\n' "${wanted[@]}" 2>/dev/null || true; } |
        awk '$2 == "installed" { print $1 }' >"$scratch/installed"
    printf '%s\n' "${wanted[@]}" | grep -Fvxf "$scratch/installed" || true
}

# install_packages GROUP...: installs what is missing of the groups; touches nothing when nothing is.
install_packages() {
    local missing as_root=()
    mapfile -t missing < <(missing_packages "$@")
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi
    if [ "$(id -u)" -ne 0 ]; then
        as_root=(sudo)
    fi
    if ! command -v apt-get >/dev/null || ! command -v "${as_root[@]-true}" >/dev/null; then
        printf 'Missing: %s\nInstall these as root (they are Debian packages), then run this again.\n' \
            "${missing[*]}" >&2
        exit 1
    fi
    printf 'Installing %s\n' "${missing[*]}"
    as_root+=(env DEBIAN_FRONTEND=noninteractive)
    step "package lists" "${as_root[@]}" apt-get update
    step "packages" "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
}

# fill_sysroot DIRECTORY ARCHITECTURE GROUP...: unpacks the groups' packages for another architecture, with all that
# they need, into a directory; touches nothing when it did so before. Needs no root: to install them as a second
# architecture would upgrade the machine's own packages, which must have the same versions.
fill_sysroot() {
    local directory=$1 architecture=$2 wanted
    shift 2
    mapfile -t wanted < <(packages_of "$@")
    if [ "${wanted[*]}" = "$(cat "$directory/packages" 2>/dev/null)" ]; then
        return 0
    fi
    cat >"$scratch/apt.conf" <<TEXT
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
Dir::State "$scratch/apt";
Dir::State::status "/dev/null";
Dir::Cache "$scratch/apt";
Debug::NoLocking "true";
TEXT
    mkdir -p "$scratch/apt/lists/partial" "$scratch/apt/archives/partial"
    rm -rf "$directory"
    step "$architecture: package lists" env APT_CONFIG="$scratch/apt.conf" apt-get update || return
    step "$architecture: packages" env APT_CONFIG="$scratch/apt.conf" \
        apt-get install -y --no-install-recommends --download-only "${wanted[@]}" || return
    step "$architecture: unpack" unpack_all "$directory" "$scratch"/apt/archives/*.deb || return
    printf '%s\n' "${wanted[*]}" >"$directory/packages"
}

unpack_all() {
    local directory=$1 package
    shift
    mkdir -p "$directory"
    for package in "$@"; do
        dpkg-deb --extract "$package" "$directory" || return
    done
}

# build PRESET [TARGET...]: configures a preset and builds it; or just the targets, without need of the test
# libraries.
build() {
    local preset=$1 testing=ON targets=()
    shift
    if [ $# -gt 0 ]; then
        testing=OFF
        targets=(--target "$@")
    fi
    step "$preset: configure" cmake --preset "$preset" -DBUILD_TESTING=$testing || return
    step "$preset: build" cmake --build --preset "$preset" --parallel "$(nproc)" "${targets[@]}"
}

# build_programs: what users run, as they build it.
build_programs() {
    build release smartdiagnose zorv-local zorv-explain zorv-check zorv-fleet lumo-sim
}
