# Sourced by what builds for Windows: installs what that takes on Debian 12, and makes the libraries that Debian has no
# packages of. They are kept, as they take the better part of an hour.
. scripts/prepare.sh
packages=(
  cmake ninja-build dpkg-dev g++-mingw-w64-x86-64-posix
  g++ qt6-base-dev qt6-base-dev-tools # the programs that Qt's build takes from a Qt of the same version
  libcli11-dev                        # headers for every system
)
cache=${XDG_CACHE_HOME:-$HOME/.cache}/chanplan-windows
# What the programs and their tests do without is left out.
qt_options=(
  -DCMAKE_BUILD_TYPE=Release -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DINPUT_opengl=no
  -DFEATURE_{concurrent,dbus,gif,ico,icu,jpeg,network,sql,tabletevent,tuiotouch,vulkan,xml}=OFF
)

# fetch_qt_source VERSION: Debian's own, from the mirror that the machine's packages come from, into $cache/source
fetch_qt_source() {
  [ -e "$cache/source/qt6-base_$1.dsc" ] && return
  local mirror apt=$cache/apt
  mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Codename: bookworm' |
    head -n 1)
  [ -n "$mirror" ] || { echo "apt has no source of Debian 12 here" >&2 && return 1; }
  mkdir -p "$cache/source" "$apt/lists/partial" "$apt/cache/archives/partial"
  echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror bookworm main" >"$apt/sources.list"
  local options=(-q -o "Dir::Etc::sourcelist=$apt/sources.list" -o Dir::Etc::sourceparts=/nonexistent
    -o "Dir::State::Lists=$apt/lists" -o "Dir::Cache=$apt/cache")
  apt-get "${options[@]}" update
  (cd "$cache/source" && apt-get "${options[@]}" source --download-only "qt6-base=$1")
}

# build_qt VERSION FOLDER: takes the better part of an hour on two cores; one that was interrupted goes on
build_qt() {
  local work=$2-build
  mkdir -p "$work"
  if [ ! -e "$work/source" ]; then
    rm -rf "$work/unpacked"
    dpkg-source -x "$cache/source/qt6-base_$1.dsc" "$work/unpacked"
    mv "$work/unpacked" "$work/source"
  fi
  cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/packaging/windows/mingw.cmake" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(dpkg-architecture -q DEB_BUILD_MULTIARCH)/cmake" \
    -DCMAKE_INSTALL_PREFIX="$2" "${qt_options[@]}"
  cmake --build "$work/build"
  cmake --install "$work/build"
  cp "$work/source/debian/copyright" "$2/qt-copyright"
  rm -rf "$work"
}

# make_libraries: $libraries is where they are. A name of its own for every version, compiler and choice of options.
make_libraries() {
  install_missing_packages "$@"
  local version key
  version=$(dpkg-query --show --showformat='${source:Version}' qt6-base-dev)
  key=$({ cat packaging/windows/mingw.cmake && printf '%s\n' "${qt_options[@]}" &&
    x86_64-w64-mingw32-g++-posix --version; } | sha256sum | cut -c 1-8)
  libraries=$cache/qt-$version-$key
  [ -e "$libraries/complete" ] && return
  fetch_qt_source "$version"
  rm -rf "$libraries"
  build_qt "$version" "$libraries"
  # Taken from /usr/include as they stand, they would bring the system's headers along.
  mkdir -p "$libraries/include" "$libraries/share/cmake"
  cp -r /usr/include/CLI "$libraries/include"
  cp -r /usr/share/cmake/CLI11 "$libraries/share/cmake"
  touch "$libraries/complete"
}
