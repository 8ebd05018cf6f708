# Shared by the scripts: the project's folder, and the packages that it needs on Debian.

project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# A script whose first argument is --qt6 builds for Qt 6.
qt_suffix=
qt_packages=(qtbase5-dev libqt5opengl5-dev python3-pyqt5 pyqt5-dev python3-pyqt5.sip)
if [ "${1:-}" = --qt6 ]; then
    shift
    qt_suffix=-qt6
    qt_packages=(qt6-base-dev libqt6opengl6-dev python3-pyqt6 pyqt6-dev python3-pyqt6.sip)
fi
build_packages=(build-essential cmake file ninja-build libboost-dev python3-dev sip-tools
    libopenimageio-dev libopencolorio-dev "${qt_packages[@]}")
test_packages=(mypy python3-pytest)
[ -n "$qt_suffix" ] || test_packages+=(python3-pyside2.qtwidgets) # Debian 12 has no PySide6
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

# build PRESET [TARGET...]: configures and builds, for the chosen Qt. All output goes to standard error.
build() {
    local preset=$1$qt_suffix
    shift
    (
        cd "$project" &&
            cmake --preset "$preset" &&
            cmake --build --preset "$preset" ${1:+--target "$@"}
    ) >&2
}
