#!/bin/bash
# Installs the Debian packages that building, testing and running Kitwright need, with --windows also those that building
# it for Windows needs. Does nothing, quickly, when all are there. Works as root or through sudo. One package a line; docs/dependencies.md says what each is for.
set -euo pipefail

packages=(
  # Building
  build-essential
  ccache
  cmake
  mold
  ninja-build
  # Formats
  libpugixml-dev
  # Windows, and the pictures and fonts that they show
  adwaita-icon-theme
  fonts-dejavu-core
  libgtk-3-dev
  libwxgtk3.2-dev
  # Windows of the product's tools
  libxcb1-dev
  pkg-config
  # Cabinets
  libdeflate-dev
  libmspack-dev
  # Help books
  fp-utils
  # Tests
  libgmock-dev
  libgtest-dev
  # Windows without a display: virtual display, window manager, keyboard and mouse, screenshots, accessibility bus
  at-spi2-core
  dbus-daemon
  imagemagick
  openbox
  xauth
  xdotool
  xvfb
  # The sample machine: its packages, archives and Windows programs
  gcab
  gcc-mingw-w64-x86-64-posix
  libsodium-dev
  libzip-dev
  wixl
  zip
  zlib1g-dev
  # Judges of what the wizard wrote
  cabextract
  libmsi-dev
  msitools
  unzip
  wine
  wine64
)

# Cross-building for Windows: the compiler, what the libraries' own builds run, what draws the icon
if [[ ${1:-} == --windows ]]; then
  packages+=(
    autoconf
    automake
    dpkg-dev
    g++-mingw-w64-x86-64-posix
    librsvg2-bin
    libtool
    libz-mingw-w64-dev
    make
  )
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [[ $status == installed ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

as_root=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || {
    echo "Installing ${missing[*]} needs root rights: run this as root, or install sudo." >&2
    exit 1
  }
  as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get -q update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends install "${missing[@]}"
