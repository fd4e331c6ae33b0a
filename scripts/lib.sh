# What the scripts share: sourced, not run. The caller's working directory becomes the project's folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# What the library and the tool are built from, what the Qt host and the tests need beside, and what looks at sources
# before a commit.
BUILD_PACKAGES="g++ cmake ninja-build pkg-config libcairo2-dev libpango1.0-dev libharfbuzz-dev libfontconfig-dev
    libfreetype-dev libexpat1-dev libagg-dev fonts-dejavu-core"
TEST_PACKAGES="libgtest-dev libgmock-dev libbenchmark-dev python3 python3-numpy python3-pil librsvg2-bin"
QT_PACKAGES="qt6-base-dev qt6-tools-dev qt6-tools-dev-tools designer-qt6 libgl1-mesa-dev libopengl-dev
    libqt6opengl6-dev qt6-svg-dev"
CLANG_PACKAGES="clang"
CHECK_PACKAGES="git clang clang-format clang-tidy python3"

say() { printf '\n== %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# Those of the packages named that are not installed, and that no installed package provides.
missing_packages() {
    local package there
    there=$(dpkg-query -W -f '${db:Status-Status} ${Package}, ${Provides}\n' | sed -n 's/^installed //p' |
        tr ',' '\n' | sed 's/(.*//; s/ //g')
    for package in "$@"; do
        grep -qx -- "$package" <<<"$there" || echo "$package"
    done
}

# Installs what is missing of the packages named, and says so; asks nothing.
install_packages() {
    local missing as_root=()
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        echo "no apt here: these must be there in some other way: $*"
        return
    fi
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    say "Installing with apt:" $missing
    if [ "$(id -u)" != 0 ]; then
        sudo -n true 2>/dev/null || fail "cannot become root without asking; run: sudo apt-get install" $missing
        as_root=(sudo -n)
    fi
    local install=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0)
    "${install[@]}" install -y --no-install-recommends $missing >/dev/null 2>&1 && return
    "${install[@]}" update && "${install[@]}" install -y --no-install-recommends $missing >/dev/null ||
        fail "apt could not install:" $missing
}

# configure PRESET [CMAKE OPTION...]: into build/PRESET.
configure() {
    local preset=$1 launcher=()
    shift
    if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
    say "Configuring build/$preset"
    cmake --preset "$preset" "${launcher[@]}" "$@" >"/tmp/tavro-configure.$$" 2>&1 ||
        { cat "/tmp/tavro-configure.$$"; rm -f "/tmp/tavro-configure.$$"; fail "cmake failed"; }
    rm -f "/tmp/tavro-configure.$$"
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    say "Building build/$preset"
    cmake --build "build/$preset" -j "$(nproc)" ${1:+--target "$@"}
}
