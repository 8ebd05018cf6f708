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
    libopenimageio-dev libopencolorio-dev openimageio-tools "${qt_packages[@]}")
test_packages=(mypy python3-pytest)
[ -n "$qt_suffix" ] || test_packages+=(python3-pyside2.qtwidgets) # Debian 12 has no PySide6
display_packages=(xvfb xauth libgl1-mesa-dri fonts-dejavu-core)
check_packages=(clang-format clang-tidy)
fuzz_packages=(clang libclang-rt-14-dev)
document_packages=(doxygen qttools5-dev-tools)

# The full output of the steps of a script.
log=$project/build/$(basename "$0").log

# step TEXT COMMAND...: runs a command and prints one line: the text, and the time in seconds. The output of the command
# goes to the log. If the command fails, the end of the log and its path are printed.
step() {
    local text=$1 start=$SECONDS status=0
    shift
    mkdir -p "$project/build"
    if [ -z "${log_is_open:-}" ]; then
        : >"$log"
        log_is_open=yes
    fi
    printf '%s ... ' "$text" >&2
    printf '\n%s: %s\n' "$text" "$*" >>"$log"
    "$@" >>"$log" 2>&1 || status=$?
    if [ $status = 0 ]; then
        echo "$((SECONDS - start)) s" >&2
    else
        {
            echo "failed after $((SECONDS - start)) s"
            tail -n 100 "$log"
            echo "The full output is in $log"
        } >&2
    fi
    return $status
}

# install_missing PACKAGE...: installs the packages that are missing. Prints nothing if none is.
install_missing() {
    local package missing=()
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local as_root=()
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || {
            echo "Neither root nor sudo: install these packages first: ${missing[*]}" >&2
            return 1
        }
        as_root=(sudo)
    fi
    step "Updating the lists of packages" "${as_root[@]}" apt-get update &&
        step "Installing ${#missing[@]} packages" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures and builds, for the chosen Qt.
build() {
    local preset=$1$qt_suffix
    shift
    step "Configuring $preset" cmake -E chdir "$project" cmake --preset "$preset" &&
        step "Building ${*:-$preset}" cmake -E chdir "$project" cmake --build --preset "$preset" ${1:+--target "$@"}
}
