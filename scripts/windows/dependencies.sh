#!/bin/bash
# Cross-builds the libraries that have no mingw package in Debian, from Debian's source packages, as static libraries,
# once, into a cache outside the tree. Prints the folder that holds them. A library is built again only when the way to
# build it has changed.
#
# The cache: $KITWRIGHT_CACHE, or kitwright below the user's cache folder.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
cache=${KITWRIGHT_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/kitwright}/windows
prefix=$cache/prefix
sources=$cache/sources
stamps=$cache/stamps
mkdir -p "$prefix" "$sources" "$stamps"
exec 3>&1 1>&2

"$root/scripts/install-dependencies.sh" --windows

# Source packages come through lists of their own, made from the system's; the system's stay as they are.
apt_state=$cache/apt
source_lists() {
  mkdir -p "$apt_state/parts" "$apt_state/lists/partial"
  local file
  for file in /etc/apt/sources.list.d/*.sources; do
    [[ -e $file ]] || continue
    grep -q 'debian' "$file" || continue
    grep -q '^Components:.*main' "$file" || continue
    sed 's/^Types:.*/Types: deb-src/' "$file" > "$apt_state/parts/$(basename "$file")"
  done
  for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
    [[ -e $file ]] || continue
    sed -n 's/^deb \(.*debian.*\)$/deb-src \1/p' "$file" > "$apt_state/parts/$(basename "$file" .list)-src.list"
  done
}
apt_options=(-o "Dir::Etc::SourceList=/dev/null" -o "Dir::Etc::SourceParts=$apt_state/parts"
             -o "Dir::State::Lists=$apt_state/lists" -o "APT::Sandbox::User=root")
# fetch PACKAGE: unpacks its source into $sources/PACKAGE.
fetch() {
  [[ -d $sources/$1 ]] && return
  if [[ ! -e $apt_state/updated ]]; then
    source_lists
    apt-get "${apt_options[@]}" -q update
    touch "$apt_state/updated"
  fi
  local work=$sources/$1.work
  rm -rf "$work" && mkdir -p "$work"
  (cd "$work" && apt-get "${apt_options[@]}" -q --only-source source "$1")
  local unpacked
  unpacked=$(find "$work" -mindepth 1 -maxdepth 1 -type d | head -n 1)
  mv "$unpacked" "$sources/$1"
  rm -rf "$work"
}

jobs=$(nproc)
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
# cmake_build NAME OPTIONS...: configures, builds and installs $sources/NAME.
cmake_build() {
  local name=$1
  shift
  KITWRIGHT_WINDOWS_PREFIX=$prefix cmake -G Ninja -S "$sources/$name" -B "$cache/build/$name" \
    -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64.cmake" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF "${launcher[@]}" "$@"
  cmake --build "$cache/build/$name" -j"$jobs"
  cmake --install "$cache/build/$name"
  rm -rf "$cache/build/$name"
}
# library NAME: builds it with the function build_NAME unless that very function has built it already.
library() {
  local build stamp
  build=build_${1//[^a-z0-9]/_}
  stamp=$stamps/$1-$(declare -f "$build" | sha256sum | cut -c 1-12)
  [[ -e $stamp ]] && return
  echo "Cross-building $1"
  fetch "$1"
  "$build"
  touch "$stamp"
}

build_pugixml() { cmake_build pugixml; }
build_libdeflate() {
  make -C "$sources/libdeflate" CC=x86_64-w64-mingw32-gcc-posix AR=x86_64-w64-mingw32-ar libdeflatestatic.lib
  mkdir -p "$prefix/include" "$prefix/lib"
  cp "$sources/libdeflate/libdeflate.h" "$prefix/include/"
  cp "$sources/libdeflate/libdeflatestatic.lib" "$prefix/lib/libdeflate.a"
}
build_libmspack() {
  (cd "$sources/libmspack" && { [[ -x configure ]] || autoreconf -fi; } &&
    ./configure --host=x86_64-w64-mingw32 --prefix="$prefix" --disable-shared --enable-static \
      CC=x86_64-w64-mingw32-gcc-posix && make -j"$jobs" libmspack.la && make install-libLTLIBRARIES install-includeHEADERS)
}
build_googletest() { cmake_build googletest -DBUILD_GMOCK=ON; }
build_libsodium() {
  (cd "$sources/libsodium" && { [[ -x configure ]] || autoreconf -fi; } &&
    ./configure --host=x86_64-w64-mingw32 --prefix="$prefix" --disable-shared --enable-static --disable-ssp \
      CC=x86_64-w64-mingw32-gcc-posix && make -j"$jobs" && make install)
}
build_libzip() {
  cmake_build libzip -DENABLE_COMMONCRYPTO=OFF -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF -DENABLE_OPENSSL=OFF \
    -DENABLE_WINDOWS_CRYPTO=OFF -DENABLE_BZIP2=OFF -DENABLE_LZMA=OFF -DENABLE_ZSTD=OFF -DBUILD_TOOLS=OFF \
    -DBUILD_REGRESS=OFF -DBUILD_OSSFUZZ=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOC=OFF
}
# Windows, dialogs, grids and the help viewer, without all that the wizard does not use. The repacked source lacks the
# bundled picture libraries: pictures are SVG.
build_wxwidgets3_2() {
  cmake_build wxwidgets3.2 -DwxBUILD_SHARED=OFF \
    -DwxUSE_NANOSVG=builtin -DwxUSE_ZLIB=sys -DZLIB_LIBRARY=/usr/x86_64-w64-mingw32/lib/libz.a \
    -DwxUSE_LIBPNG=OFF -DwxUSE_LIBJPEG=OFF -DwxUSE_LIBTIFF=OFF -DwxUSE_SVG=OFF \
    -DwxUSE_ARTPROVIDER_TANGO=OFF -DwxUSE_XRC=OFF -DwxUSE_XML=OFF -DwxUSE_EXPAT=OFF -DwxUSE_REGEX=OFF \
    -DwxUSE_SOCKETS=OFF -DwxUSE_URL=OFF -DwxUSE_FS_INET=OFF -DwxUSE_WEBREQUEST=OFF \
    -DwxUSE_PROTOCOL=OFF -DwxUSE_PROTOCOL_FTP=OFF -DwxUSE_PROTOCOL_HTTP=OFF -DwxUSE_PROTOCOL_FILE=OFF \
    -DwxUSE_AUI=OFF -DwxUSE_RIBBON=OFF -DwxUSE_STC=OFF -DwxUSE_PROPGRID=OFF -DwxUSE_RICHTEXT=OFF \
    -DwxUSE_MEDIACTRL=OFF -DwxUSE_WEBVIEW=OFF -DwxUSE_OPENGL=OFF
}

for name in pugixml libdeflate libmspack googletest libsodium libzip wxwidgets3.2; do
  library "$name"
done
echo "$prefix" >&3
