# Shared by the scripts: the project's folder, and the packages that it needs on Debian.

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages=(build-essential cmake file ninja-build qtbase5-dev libqt5opengl5-dev libboost-dev
    python3-dev python3-pyqt5 pyqt5-dev python3-pyqt5.sip sip-tools)
test_packages=(python3-pytest)
display_packages=(xvfb xauth libgl1-mesa-dri fonts-dejavu-core)
check_packages=(clang-format clang-tidy)
fuzz_packages=(clang libclang-rt-14-dev)
document_packages=(doxygen qttools5-dev-tools)

# install_missing PACKAGE...: installs the packages that are missing. Prints nothing if none is.
install_missing() {
    local package missing=()
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing ${missing[*]}" >&2
    local as_root=()
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || {
            echo "Neither root nor sudo: install these packages first." >&2
            return 1
        }
        as_root=(sudo)
    fi
    {
        "${as_root[@]}" apt-get update &&
            "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
                apt-get install -y --no-install-recommends "${missing[@]}"
    } >&2
}

# build PRESET [TARGET...]: configures and builds. All output goes to standard error.
build() {
    local preset=$1
    shift
    (
        cd "$project" &&
            cmake --preset "$preset" &&
            cmake --build --preset "$preset" ${1:+--target "$@"}
    ) >&2
}
