#!/bin/bash
# Runs the driver scripts of tests/scripts with kitwright-drive.exe under Wine, on a machine that is set up by installing
# the sample package, and compares the transcripts with those of the embedded machine. Prints GoogleTest's words.
# scripts-not-run.txt names the scripts that are left out, with the reason.
#
#   scripts/windows/run-scripts.sh [NAME...]    all of them, or those that are named
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
cd "$root"
native=${KITWRIGHT_NATIVE_BUILD:-$root/build}
cross=$root/build-windows-x64
level=710

# The sample machine is laid out by the native build's programs.
if [[ -z ${KITWRIGHT_NATIVE_BUILD:-} ]]; then
  cmake --preset release > /dev/null
fi
cmake --preset windows > /dev/null
cmake --build "$native" --target sample-content sample_windows sample_settings_tool TxMailScan TxPanelLib TxHelpLib \
  SampleDialogs settings-cipher sample_templates > "$cross/native-build.txt"
cmake --build "$cross" --target kitwright-drive CabArc MakeCab FEADZED StcSign zedutil TxUnzip bulwarkcfg TxMailScan \
  TxPanelLib TxHelpLib sample_settings_tool sample_templates > "$cross/scripts-build.txt"

source "$here/wine-session.sh"
start_wine
KITWRIGHT_BUILD_DIR=$native tests/run-script --machine "$level"
machine=$native/tests/machines/$level

# set_up: makes a machine of the prefix.
set_up() {
  local drive=$WINEPREFIX/drive_c product part
  cp -r "$machine/drive_c/"{Packages,Payloads} "$drive/"
  mkdir -p "$drive/Temp" "$drive/Kitwright"
  cp -r "$machine/drive_c/ProgramData/." "$drive/ProgramData/"
  cp "$cross/bin/"{kitwright-drive,CabArc,MakeCab,StcSign,FEADZED}.exe "$cross/bin/Repacker.stub" \
    "$cross/bin/"{zedutil,TxUnzip,bulwarkcfg}.dll "$drive/Kitwright/"
  for part in BCN BWK KTE ZED local; do cp -r "$cross/bin/$part" "$drive/Kitwright/"; done
  give_to_user "$drive"
  # The user's folder for temporary files, as on the sample machine.
  run_wine 60 reg add 'HKCU\Environment' /v TEMP /t REG_SZ /d 'C:\Temp' /f > /dev/null
  run_wine 60 reg add 'HKCU\Environment' /v TMP /t REG_SZ /d 'C:\Temp' /f > /dev/null
  run_wine 120 msiexec /i "C:\\Packages\\Kestrane\\Kte$level.msi" /qn
  # What the product wrote into its settings since, which no package brings.
  for part in "$machine/registry/"*.reg; do
    cp "$part" "$drive/import.reg"
    run_wine 60 regedit /s 'C:\import.reg'
  done
  rm -f "$drive/import.reg"
  # The tools of the package only mark their places.
  product="$drive/Program Files/Orvantic/Kestrane Enterprise"
  for part in OasCfg32 OdsCfg32 TxDesk TxFetch; do cp "$cross/sample/product/OasCfg32.exe" "$product/$part.exe"; done
  cp "$cross/sample/product/"*.dll "$product/"
  (cd "$machine/drive_c/Program Files/Orvantic" && find . -name SiteList.xml) | while read -r part; do
    cp "$machine/drive_c/Program Files/Orvantic/$part" "$drive/Program Files/Orvantic/$part"
  done
  give_to_user "$drive"
  # What each script finds anew: all but the system's own files.
  end_server
  mkdir -p "$wine_home/kept"
  cp -a "$WINEPREFIX/"*.reg "$wine_home/kept/"
  mkdir -p "$wine_home/kept/drive_c"
  (cd "$drive" && find . -mindepth 1 -maxdepth 1 ! -name windows -exec cp -a -t "$wine_home/kept/drive_c" {} +)
  give_to_user "$wine_home/kept"
}

end_server() {
  "${as_user[@]}" wineserver -k 2> /dev/null || true
  "${as_user[@]}" wineserver -w
}

# fresh_machine: puts the prefix back to what set_up made.
fresh_machine() {
  end_server
  chmod -R u+w "$WINEPREFIX/drive_c"
  find "$WINEPREFIX/drive_c" -mindepth 1 -maxdepth 1 ! -name windows -exec rm -rf {} +
  cp -a "$wine_home/kept/." "$WINEPREFIX/"
  "${as_user[@]}" wineserver -p
}

# plain: names made of the time and new identifiers by their number, in order of appearance.
plain() {
  sed -e 's/C:\\Kitwright\\/<program folder>\\/g' -e 's/C:\\Kitwright/<program folder>/g' | tr -d '\r' | awk '
    {
      rest = $0
      line = ""
      while (match(rest, /_id_[0-9]+/)) {
        id = substr(rest, RSTART, RLENGTH)
        if (!(id in names)) names[id] = "_id_<" ++count ">"
        line = line substr(rest, 1, RSTART - 1) names[id]
        rest = substr(rest, RSTART + RLENGTH)
      }
      print line rest
    }' | awk -v known="$wine_home/known" -f tests/new-identifiers.awk
}
grep -rhoE '\{[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\}' sample tests/scripts --exclude='*.expected' |
  sort -u > "$wine_home/known" || true

# known_differences: without the lines that differ for a known reason (differences.txt).
known_differences() {
  grep -v '^#' "$here/differences.txt" | sed 's/  .*//' > "$wine_home/differences"
  grep -vxEf "$wine_home/differences" || true
}

# not_run NAME: the reason for leaving a script out.
not_run() { sed -n "s/^$1  *//p" "$here/scripts-not-run.txt"; }

set_up
passed=0 failed=() skipped=()
names=("$@")
if [[ ${#names[@]} -eq 0 ]]; then
  for script in tests/scripts/*.kw; do names+=("$(basename "$script" .kw)"); done
fi
for name in "${names[@]}"; do
  script=tests/scripts/$name
  said=$(sed -n 's/^# level: *//p' "$script.kw" | head -n 1)
  reason=$(not_run "$name")
  [[ -n $reason || ${said:-$level} == "$level" ]] || reason="its machine is of level $said"
  if [[ -z $reason && -f $script.before ]] && grep -qE 'machine\.ini|registry/|kitwright-drive' "$script.before"; then
    reason="it is prepared by means of the embedded machine"
  fi
  if [[ -n $reason ]]; then
    skipped+=("script.$name: $reason")
    continue
  fi
  fresh_machine
  cp "$script.kw" "$wine_home/script.kw"
  # What a run left behind is told by a script that may itself need the embedded machine, or print registry values in
  # their order, which Wine does not keep.
  after=$script.after
  if [[ -f $after ]] && grep -qE 'machine\.ini|registry/|kitwright-drive|show-remains|show-settings' "$after"; then after=; fi
  export KITWRIGHT_ROOT=$WINEPREFIX KITWRIGHT_TESTS=$root/tests KITWRIGHT_BUILD_DIR=$native
  if [[ -f $script.before ]]; then (cd "$WINEPREFIX" && bash -eu "$root/$script.before" && give_to_user drive_c); fi
  status=0
  # No person is there for the product's dialog boxes.
  (cd "$WINEPREFIX/drive_c/Kitwright" && SAMPLE_TOOL_ANSWER=cancel run_wine 120 kitwright-drive.exe "Z:${wine_home//\//\\}\\script.kw") \
    > "$wine_home/transcript" 2>&1 || status=$?
  {
    cat "$wine_home/transcript"
    echo "exit $status"
    if [[ -f $after ]]; then (cd "$WINEPREFIX" && bash -eu "$root/$after") 2>&1 || echo "after: failed"; fi
  } | plain | known_differences > "$wine_home/printed"
  if [[ -n $after ]]; then cat "$script.expected"; else sed '/^exit [0-9]*$/q' "$script.expected"; fi |
    plain | known_differences > "$wine_home/expected"
  if diff -u --label "$name embedded" --label "$name windows" "$wine_home/expected" "$wine_home/printed"; then
    passed=$((passed + 1))
  else
    failed+=("script.$name")
  fi
done

echo "[  PASSED  ] $passed tests."
if [[ ${#skipped[@]} -gt 0 ]]; then
  echo "[  SKIPPED ] ${#skipped[@]} tests, listed below:"
  printf '[  SKIPPED ] %s\n' "${skipped[@]}"
fi
[[ ${#failed[@]} -gt 0 ]] || exit 0
echo "[  FAILED  ] ${#failed[@]} tests, listed below:"
printf '[  FAILED  ] %s\n' "${failed[@]}"
exit 1
