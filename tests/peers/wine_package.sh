# Sourced by the peers' scripts: lays out a machine of the newer level and a prefix of Wine's own, and goes to the
# machine's folder. KITWRIGHT_BUILD_DIR names the build folder. The script is skipped (77) where Wine is missing.
command -v wine >/dev/null || exit 77
tests=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=$(mktemp -d)
# By the locale Wine knows what the names of files on this system mean.
export LC_ALL=C.UTF-8
export WINEDEBUG=-all WINEDLLOVERRIDES='mscoree=d;mshtml=d'
unset DISPLAY WAYLAND_DISPLAY
trap 'wineserver -k 2>/dev/null || true; chmod -R u+w "$work"; rm -rf "$work"' EXIT
[ -f "$KITWRIGHT_BUILD_DIR/tests/machines/710/machine.ini" ] || "$tests/run-script" --machine 710
cp -a "$KITWRIGHT_BUILD_DIR/tests/machines/710" "$work/machine"
export KITWRIGHT_ROOT=$work/machine
# another_prefix: from now on Windows is a fresh one.
prefixes=0
another_prefix() {
  [ $prefixes = 0 ] || wineserver -k || true
  prefixes=$((prefixes + 1))
  export WINEPREFIX=$work/prefix$prefixes
  target=$WINEPREFIX/drive_c
  product=$target/Program\ Files/Orvantic/Kestrane\ Enterprise
}
another_prefix
cd "$work/machine"

# build NAME: a run of the script of that name.
build() {
  "$KITWRIGHT_BUILD_DIR/bin/kitwright-drive" "$tests/scripts/$1.kw" >"$work/transcript" || {
    cat "$work/transcript"
    exit 1
  }
}
# install FOLDER: the package in a folder of drive C.
install() {
  timeout 200 wine msiexec /i "Z:$(pwd | tr / '\\')\\drive_c\\$1\\Kte710.msi" /qn
}
