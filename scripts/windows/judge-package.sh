#!/bin/bash
# judge-package.sh PACKAGE.msi FOLDER [--do-not-install]: Windows Installer judges a package that the wizard built. It reads every row, joins
# tables, exports all of it, makes a new database of what it exported, and installs the package. What it reads and
# exports must be what the engine reads of the package, the same of the database that it made, and what it installs
# must be the bytes of the package's cabinet. To be run on a machine where the product is not installed, in the folder's
# place for temporary files; WINEPREFIX, KITWRIGHT_WINE_AS and the like as in machine/common.sh, KITWRIGHT_WINE_DUMP
# names the program made of tests/peers/wine_dump.c, KITWRIGHT_MSISQL the engine's.
source "$(dirname "$0")/machine/common.sh"
package=$1 work=$2
rm -rf "$work"
mkdir -p "$work"/{exported,streams}
cp "$package" "$work/package.msi"
if [[ -n $KITWRIGHT_WINE_OWNER ]]; then chown -R "$KITWRIGHT_WINE_OWNER" "$work"; fi
cd "$work"

fail() {
  echo "judge-package: $(basename "$package"): $*"
  exit 1
}
installer() { "${as_user[@]}" timeout --kill-after=5 120 wine "$KITWRIGHT_WINE_DUMP" "$@" 2> errors | tr -d '\r'; }
# engine DATABASE SELECT TABLE: the rows behind the table's name; streams only as such.
engine() { "$KITWRIGHT_MSISQL" "$1" --readonly "$2" | sed "s/^/$3\t/"; }
rows_by_engine() {
  local table
  "$KITWRIGHT_MSISQL" "$1" --readonly 'select `Name` from `_Tables`' | while read -r table; do
    engine "$1" "select * from \`$table\`" "$table"
  done | sort
}
rows_by_installer() { installer "$1" --all | iconv -f WINDOWS-1252 -t UTF-8 | sed 's/\[[0-9]* bytes\]/[Binary Data]/' | sort; }
# streams DATABASE FOLDER: the streams of tables as an independent reader unpacks them.
streams() {
  local stream
  mkdir -p "$2"
  msiinfo streams "$1" | { grep -v '^.\?SummaryInformation' || true; } | while read -r stream; do
    msiinfo extract "$1" "$stream" > "$2/$stream"
  done
}

rows_by_engine package.msi > ours
rows_by_installer package.msi > theirs
[[ -s ours ]] && cmp -s ours theirs || { diff ours theirs | head -n 20; cat errors; fail "the installer reads other rows"; }

if grep -q $'^_Tables\tFeatureComponents$\|^FeatureComponents\t' ours; then
  join='SELECT `File`.`File`, `Component`.`Directory_`, `FeatureComponents`.`Feature_` FROM `File`, `Component`, `FeatureComponents`'
  join+=' WHERE `File`.`Component_` = `Component`.`Component` AND `FeatureComponents`.`Component_` = `Component`.`Component`'
  "$KITWRIGHT_MSISQL" package.msi --readonly "$join" | sort > ours.joined
  installer package.msi "$join" | iconv -f WINDOWS-1252 -t UTF-8 | sort > theirs.joined
  [[ -s ours.joined ]] && cmp -s ours.joined theirs.joined || { diff ours.joined theirs.joined | head; fail "the installer joins otherwise"; }
fi

installer package.msi --export "Z:${work//\//\\}\\exported" || { cat errors; fail "the installer exports not all"; }
streams package.msi streams
for stream in streams/*; do
  name=${stream#streams/}
  # A cabinet that belongs to no table is not exported.
  [[ $name == *.* && -d exported/${name%%.*} ]] || continue
  cmp -s "$stream" "exported/${name/.//}" || fail "the stream $name is exported otherwise"
done
installer new.msi --import "Z:${work//\//\\}\\exported" package.msi || { cat errors; fail "the installer cannot take back what it exported"; }
diff <(msiinfo suminfo package.msi) <(msiinfo suminfo new.msi) || fail "the installer keeps another summary"
rows_by_engine new.msi > again
cmp -s ours again || { diff ours again | head -n 20; fail "the engine reads other rows of the installer's own database"; }
streams new.msi streams.again
for stream in streams.again/*; do
  if [[ -e $stream ]]; then cmp "$stream" "streams/${stream##*/}" || fail "a stream of the installer's own database"; fi
done

# What is installed: the files of each feature that is on, if all above it are, by their bytes.
if [[ ${3:-} == --do-not-install ]]; then
  echo "judged: $(basename "$package"): $(wc -l < ours) rows, $(ls streams | wc -l) streams, not installed"
  exit
fi
status=0
cp "$package" "$drive/package.msi"
# Some packages are set to install there.
mkdir -p "$WINEPREFIX/drive_d"
if [[ -n $KITWRIGHT_WINE_OWNER ]]; then chown "$KITWRIGHT_WINE_OWNER" "$WINEPREFIX/drive_d"; fi
ln -sfn ../drive_d "$WINEPREFIX/dosdevices/d:"
give_to_user
on_machine msiexec /i 'C:\package.msi' /qn || status=$?
((status == 0)) || fail "the installation ended with $status"
level=$(awk -F '\t' '$1 == "Property" && $2 == "INSTALLLEVEL" { print $3 }' ours)
mkdir unpacked
for cabinet in streams/*; do
  if [[ $(head -c 4 "$cabinet") == MSCF ]]; then cabextract -e WINDOWS-1252 -q -d unpacked "$cabinet"; fi
done
# Some file may be in the system's folder, among those of the system.
{
  find "$drive" "$WINEPREFIX/drive_d" -path "$drive/windows" -prune -o -type f -print0
  find "$drive/windows" -type f -size -16k ! -iname '*.dll' ! -iname '*.exe' -print0
} | xargs -0 sha256sum | cut -c 1-64 | sort -u > installed
awk -F '\t' -v level="${level:-1}" '
  $1 == "Feature" { parent[$2] = $3; wanted[$2] = $7 > 0 && $7 <= level }
  $1 == "FeatureComponents" { of[$3] = of[$3] " " $2 }
  $1 == "File" { component[$2] = $3 }
  function on(feature) { return feature == "" || (wanted[feature] && on(parent[feature])) }
  END {
    for (key in component) {
      count = split(of[component[key]], features, " ")
      for (i = 1; i <= count; ++i) if (on(features[i])) { print key; break }
    }
  }' ours | while read -r key; do
  if [[ -f unpacked/$key ]]; then printf 'unpacked/%s\0' "$key"; fi
done | xargs -0r sha256sum > wanted
missing=$(awk 'NR == FNR { there[$1]; next } !($1 in there) { print $2; exit }' installed wanted)
[[ -z $missing ]] || fail "the file ${missing#unpacked/} is not installed"
count=$(wc -l < wanted)
((count > 0)) || fail "no file to install was found in it"
echo "judged: $(basename "$package"): $(wc -l < ours) rows, $(ls streams | wc -l) streams, $count files installed"
