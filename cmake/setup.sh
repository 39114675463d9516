# What ./run and ./check share: the project's root, the Debian packages and the build.
# Sourced by them, with `set -eu` in force.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# What the programs and the example are built from, and what the window needs to be read.
run_packages=(
    cmake ninja-build g++
    qtbase5-dev libqt5svg5-dev qttools5-dev qttools5-dev-tools qtwayland5 libxcb1-dev
    libtomlplusplus-dev libboost-dev libsqlite3-dev nettle-dev libhdf5-dev libtiff-dev
    fonts-dejavu-core fonts-ipafont-gothic
)
# Beside those, what the tests, the benchmark programs and the Debian package need.
check_packages=(
    libbenchmark-dev libfast-float-dev libfmt-dev libtbb-dev
    librsvg2-bin poppler-utils pandoc
    xvfb xauth xdotool
    chromium chromium-driver python3-selenium python3-h5py python3-tifffile
    clang clang-tidy libclang-rt-14-dev lld cppcheck gcovr pkg-config
)

say() { printf '== %s\n' "$*"; }

as_root() {
    if [ "$(id -u)" = 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

# missing_packages PACKAGE...: those that are not installed, a line each.
missing_packages() {
    local installed package
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null || true)
    for package in "$@"; do
        grep -qx "installed $package" <<<"$installed" || printf '%s\n' "$package"
    done
}

# install_packages PACKAGE...: installs those that are not there; does nothing where none is missing.
install_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "This is no Debian system: nothing installed. Needed, by Debian's names: $*"
        return
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@")
    [ "${#missing[@]}" -gt 0 ] || return 0
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
        say "Packages are missing and there is no sudo. As root: apt-get install ${missing[*]}"
        return 1
    fi
    say "Installing Debian packages$([ "$(id -u)" = 0 ] || echo ' through sudo'): ${missing[*]}"
    as_root apt-get -q -o DPkg::Lock::Timeout=300 update
    as_root apt-get -qy -o DPkg::Lock::Timeout=300 install --no-install-recommends "${missing[@]}"
}

# build PRESET [CMAKE BUILD OPTION...]: configures and builds one preset of CMakePresets.json.
build() {
    local preset=$1
    shift
    say "Building (preset $preset)"
    (cd "$root" && cmake --preset "$preset" && cmake --build --preset "$preset" "$@")
}
