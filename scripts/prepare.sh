# Sourced by ./run, ./test and others: installs what is missing on Debian 12, configures the build and builds.

packages=(
  g++ cmake ninja-build qt6-base-dev qt6-serialport-dev libcups2-dev libcli11-dev libgtest-dev libbenchmark-dev
  xvfb xauth fonts-dejavu-core # a screen and letters where there are none
  openbox xdotool              # a window manager and hands for it
  fonts-liberation             # letters as wide as Arial's, for printing
)

# install_missing_packages [PACKAGE...]: these and the ones above
install_missing_packages() {
  local missing=() package
  for package in "${packages[@]}" "$@"; do
    dpkg-query --show --showformat='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "Installing ${missing[*]}"
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Run this as root, or install sudo: packages are missing: ${missing[*]}" >&2; exit 2; }
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update -q
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]
build() {
  local preset=$1
  shift
  cmake --preset "$preset"
  cmake --build --preset "$preset" ${1:+--target "$@"}
}

# install_programs FOLDER: builds what users get, and installs it there as `cmake --install` does
install_programs() {
  build release chanplan handheld-simulator chanplan-editor chanplan_help
  cmake --install build/release --prefix "$1"
}
