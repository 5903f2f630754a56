#!/bin/bash
# check-resources.sh FOLDER: fails when a program there lacks what Windows reads of it: a version block with its own name
# and the project's version; Kitwright.exe also its icon in all sizes, and one manifest that asks for administrator
# rights, version 6 of the common controls and awareness of each monitor's resolution.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
version=$(sed -n 's/^project(.*VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
status=0

# expect PROGRAM TEXT...
expect() {
  local program=$1 text
  shift
  for text; do
    if [[ $resources != *"$text"* ]]; then
      echo "$program has no $text" >&2
      status=1
    fi
  done
}

for program in "$1"/*.exe; do
  name=$(basename "$program" .exe)
  resources=$(x86_64-w64-mingw32-windres -J coff -O rc "$program")
  expect "$name.exe" "VALUE \"InternalName\", \"$name\"" "VALUE \"OriginalFilename\", \"$name.exe\"" \
    "VALUE \"FileVersion\", \"$version\"" "VALUE \"ProductVersion\", \"$version\"" \
    "FILEVERSION ${version//./, }, 0" 'VALUE "ProductName", "Kitwright"'
  [[ $name == Kitwright ]] || continue
  # Quotes in the manifest's text are doubled.
  resources=${resources//\"\"/\"}
  expect "$name.exe" 'requestedExecutionLevel level="requireAdministrator"' 'name="Microsoft.Windows.Common-Controls"' \
    'version="6.0.0.0"' 'PerMonitorV2' 'longPathAware' 'RT_GROUP_ICON'
  [[ $(grep -o 'RT_MANIFEST' <<< "$resources" | wc -l) -eq 1 ]] || { echo "$name.exe has not one manifest" >&2; status=1; }
  [[ $(grep -o 'RT_ICON' <<< "$resources" | wc -l) -ge 6 ]] || { echo "$name.exe has not all sizes of its icon" >&2; status=1; }
done
exit "$status"
