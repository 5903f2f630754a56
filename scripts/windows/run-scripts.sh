#!/bin/bash
# Runs the driver scripts of tests/scripts with kitwright-drive.exe under Wine, on machines that are set up by installing
# the sample packages, and compares the transcripts, and what the runs left behind, with those of the embedded machine.
# Windows Installer then judges every package that a run built. Prints GoogleTest's words. scripts-not-run.txt names the
# scripts that are left out, with the reason.
#
# Then it plays the scripts of tests/screen on the real windows, and compares what they show with the driver's transcript.
#
#   scripts/windows/run-scripts.sh [NAME...]    all of them, or those that are named; screen:NAME is one of tests/screen
#
# KITWRIGHT_PICTURES names a folder for pictures of the windows that those show.
#
# KITWRIGHT_WORKERS says how many run at a time (as many as there are processors when it says nothing),
# KITWRIGHT_NATIVE_BUILD names a native build folder other than build/.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
cd "$root"
native=${KITWRIGHT_NATIVE_BUILD:-$root/build}
cross=$root/build-windows-x64
workers=${KITWRIGHT_WORKERS:-$(nproc)}
levels=(700 710)

# The sample machines are laid out by the native build's programs.
if [[ -z ${KITWRIGHT_NATIVE_BUILD:-} ]]; then
  cmake --preset release > /dev/null
fi
cmake --preset windows > /dev/null
cmake --build "$native" --target sample-content sample_windows sample_settings_tool TxMailScan TxPanelLib TxHelpLib \
  SampleDialogs settings-cipher peak-memory msisql sample_templates > "$cross/native-build.txt" || {
  tail -n 50 "$cross/native-build.txt"
  exit 1
}
cmake --build "$cross" --target kitwright kitwright-drive play-on-windows CabArc MakeCab FEADZED StcSign zedutil TxUnzip bulwarkcfg TxMailScan \
  TxPanelLib TxHelpLib sample_settings_tool sample_templates help_zed help_bulwark > "$cross/scripts-build.txt" || {
  tail -n 50 "$cross/scripts-build.txt"
  exit 1
}

echo "== building for script runs took $SECONDS s"
source "$here/wine-session.sh"
# What takes the place of the native build in what prepares and examines a run's machine.
stand_in=$wine_home/build
mkdir -p "$stand_in/bin" "$stand_in/tests/machines"
ln -s "$here/machine/"* "$stand_in/bin/"
for part in BCN BWK KTE ZED local; do ln -s "$cross/bin/$part" "$stand_in/bin/$part"; done
ln -s "$native/tests/"{settings-cipher,peak-memory} "$stand_in/tests/"
x86_64-w64-mingw32-gcc-posix -O1 -municode -o "$wine_home/plain_user.exe" "$here/plain_user.c"
x86_64-w64-mingw32-gcc-posix -O1 -municode -o "$wine_home/hold_files.exe" "$here/hold_files.c"
x86_64-w64-mingw32-gcc-posix -O1 -o "$wine_home/wine_dump.exe" tests/peers/wine_dump.c -lmsi
gcc -O1 -shared -fPIC -o "$wine_home/machine_facts.so" "$here/machine_facts.c"
export KITWRIGHT_WINE_AS="${as_user[*]}" KITWRIGHT_WINE_OWNER=${nobody:+$nobody:$nobody}
export KITWRIGHT_WINE_DUMP=$wine_home/wine_dump.exe KITWRIGHT_WINE_HOLD=$wine_home/hold_files.exe KITWRIGHT_MSISQL=$native/bin/msisql
for level in "${levels[@]}"; do
  KITWRIGHT_BUILD_DIR=$native tests/run-script --machine "$level"
  ln -s "$native/tests/machines/$level" "$stand_in/tests/machines/$level"
done
grep -rhoE '\{[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\}' sample tests/scripts --exclude='*.expected' |
  sort -u > "$wine_home/known" || true
moment=$(sed -n 's/^now=//p' "$native/tests/machines/${levels[0]}/machine.ini")
export LD_PRELOAD=$wine_home/machine_facts.so KITWRIGHT_MOMENT
KITWRIGHT_MOMENT=$(date -u -d "$moment" +%s)
start_wine

# keep FOLDER: copies what makes the machine of the prefix, all but the system's own files.
keep() {
  end_server
  mkdir -p "$1/drive_c/windows"
  cp -a "$WINEPREFIX/"*.reg "$1/"
  (cd "$WINEPREFIX/drive_c" && find . -mindepth 1 -maxdepth 1 ! -name windows -exec cp -a -t "$1/drive_c" {} +)
  [[ ! -d $WINEPREFIX/drive_c/windows/Installer ]] || cp -a "$WINEPREFIX/drive_c/windows/Installer" "$1/drive_c/windows/"
  give_to_user "$1"
}
# put_back FOLDER: makes the prefix the machine that was kept there.
put_back() {
  # What the machine is now is thrown away: nothing has to be written any more.
  "${as_user[@]}" wineserver -k9 2> /dev/null || true
  "${as_user[@]}" wineserver -w
  local drive=$WINEPREFIX/drive_c
  chmod -R u+w "$drive"
  find "$WINEPREFIX" -mindepth 1 -maxdepth 1 ! -name drive_c ! -name dosdevices ! -name ".update*" -exec rm -rf {} +
  find "$drive" -mindepth 1 -maxdepth 1 ! -name windows -exec rm -rf {} +
  rm -rf "$drive/windows/Installer" "$WINEPREFIX/dosdevices/d:"
  cp -a "$1/." "$WINEPREFIX/"
  "${as_user[@]}" wineserver -p
}

# set_up LEVEL: makes the fresh prefix a machine of that level.
set_up() {
  local level=$1 drive=$WINEPREFIX/drive_c machine=$native/tests/machines/$1 product part
  cp -r "$machine/drive_c/"{Packages,Payloads} "$drive/"
  mkdir -p "$drive/Temp" "$drive/Kitwright"
  cp -r "$machine/drive_c/ProgramData/." "$drive/ProgramData/"
  cp "$cross/bin/"{Kitwright,kitwright-drive,CabArc,MakeCab,StcSign,FEADZED}.exe "$cross/bin/Repacker.stub" \
    "$cross/bin/"*.htb "$cross/tests/play-on-windows.exe" \
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
  (cd "$WINEPREFIX" && KITWRIGHT_BUILD_DIR=$stand_in "$root/tests/live-settings") > "$wine_home/live.before"
  keep "$wine_home/kept-$level"
  cp "$wine_home/live.before" "$wine_home/kept-$level/"
}

# plain: new identifiers by their number, in order of appearance; the program's folder; the top of drive C, where it is
# told in one line, without what only one of the two machines has.
plain() {
  sed -e '/^drive_c: /{ s/ Kitwright\b//; s/ Program Files (x86)//; s/ users\b//; s/ [Ww]indows\b//; s/ Documents and Settings// }' \
    -e 's/C:\\Kitwright\\/<program folder>\\/g' -e 's/C:\\Kitwright/<program folder>/g' | tr -d '\r' |
    awk -v known="$wine_home/known" -f tests/new-identifiers.awk | awk -f "$here/registry-order.awk"
}
# known_differences NAME: without the lines that differ for a known reason (differences.txt).
known_differences() {
  local patterns
  patterns=$(awk -F '  +' -v name="$1" '$1 == "*" || $1 == name { print $2 }' "$here/differences.txt")
  grep -avxE "$patterns" || true
}

# vary VARIANT LEVEL: makes another machine of the worker's: "32-bit", the product has installed itself as a 32-bit program,
# so that its settings are in the registry's view for those; "rewritten", the package to open was written by Windows
# Installer.
vary() {
  local drive=$WINEPREFIX/drive_c package
  case $1 in
    32-bit)
      run_wine 60 reg copy 'HKLM\Software\Orvantic' 'HKLM\Software\WOW6432Node\Orvantic' /s /f > /dev/null
      run_wine 60 reg delete 'HKLM\Software\Orvantic' /f > /dev/null
      (cd "$WINEPREFIX" && "$root/tests/live-settings") > "$WINEPREFIX/live.before"
      ;;
    rewritten)
      mkdir "$drive/exported"
      package='C:\Packages\Kestrane\Kte'$2.msi
      give_to_user "$drive"
      run_wine 60 "$KITWRIGHT_WINE_DUMP" "$package" --export 'C:\exported'
      mv "$drive/Packages/Kestrane/Kte$2.msi" "$drive/exported/original.msi"
      run_wine 60 "$KITWRIGHT_WINE_DUMP" "$package" --import 'C:\exported' 'C:\exported\original.msi'
      rm -r "$drive/exported"
      ;;
  esac
}

# not_run NAME: the reason for leaving a script out.
not_run() { sed -n "s/^$1   *//p" "$here/scripts-not-run.txt"; }

# run_one NAME[@VARIANT] FOLDER: runs a script on the worker's machine; the folder is for its files. Prints the difference.
# The status 77 says that its preparation cannot be made here, for the reason that is printed.
run_one() (
  local name=$1 work=$2 script=$root/tests/scripts/${1%@*} status=0 after= level seconds megabytes start
  if [[ -f $script.after && -z $(not_run "$name:after") ]]; then after=$script.after; fi
  level=$(sed -n 's/^# level: *//p' "$script.kw" | head -n 1)
  seconds=$(sed -n 's/^# seconds: *//p' "$script.kw" | head -n 1)
  megabytes=$(sed -n 's/^# megabytes: *//p' "$script.kw" | head -n 1)
  put_back "$wine_home/kept-${level:-710}"
  export KITWRIGHT_ROOT=$WINEPREFIX KITWRIGHT_TESTS=$root/tests KITWRIGHT_BUILD_DIR=$stand_in
  export KITWRIGHT_TRANSCRIPT=$work/transcript
  if [[ $name == *@* ]]; then export KITWRIGHT_VARIANT=${name#*@}; fi
  vary "${KITWRIGHT_VARIANT:-}" "${level:-710}"
  # No person is there for the product's dialog boxes.
  export SAMPLE_TOOL_ANSWER=cancel
  if [[ -f $script.before ]]; then
    (cd "$WINEPREFIX" && timeout 240 bash -eu "$script.before") > "$work/before" 2>&1 || status=$?
    if ((status != 0)); then
      ((status == 77)) || echo "$name.before failed:"
      cat "$work/before"
      exit "$status"
    fi
  fi
  give_to_user "$WINEPREFIX/drive_c"
  # The system's own programs share the standard error of the first program: a fault of theirs is not the wizard's.
  run_wine 60 cmd /c exit > "$work/boot" 2>&1
  start=(kitwright-drive.exe)
  if [[ -f $WINEPREFIX/drive_c/Kitwright/plain-user ]]; then start=("Z:${wine_home//\//\\}\\plain_user.exe" "${start[@]}"); fi
  (
    cd "$WINEPREFIX/drive_c/Kitwright" || exit 1
    # What the wizard itself holds: the programs that it starts are no children of it on this system's side.
    as_user=(${megabytes:+"$native/tests/peak-memory" "$megabytes"} "${as_user[@]}")
    KITWRIGHT_NOW=$KITWRIGHT_MOMENT run_wine "$((2 * ${seconds:-60}))" "${start[@]}" < "$script.kw"
  ) > "$work/transcript" 2>&1 || status=$?
  {
    cat "$work/transcript"
    echo "exit $status"
    if [[ -n $after ]]; then
      # The registry is in its files then.
      end_server
      (cd "$WINEPREFIX" && timeout 240 bash -eu "$after") 2>&1 || echo "after: failed"
    fi
  } > "$work/said"
  plain < "$work/said" | known_differences "$name" > "$work/printed"
  if [[ -n $after ]]; then cat "$script.expected"; else sed '/^exit [0-9]*$/q' "$script.expected"; fi |
    plain | known_differences "$name" > "$work/expected"
  rm -rf "$work/built"
  mkdir "$work/built"
  (cd "$WINEPREFIX/drive_c" && find . -path ./Out/\* -name '*.msi' -exec cp --parents -t "$work/built" {} +)
  diff -au --label "$name embedded" --label "$name windows" "$work/expected" "$work/printed"
)

# judge_built NAME FOLDER: lets Windows Installer judge each package that the run has built.
judge_built() (
  local package reading_only=
  if [[ -n $(not_run "$1:install") ]]; then reading_only=--do-not-install; fi
  find "$2/built" -name '*.msi' | while read -r package; do
    put_back "$wine_home/kept-bare"
    "$here/judge-package.sh" "$package" "$2/judge" $reading_only || exit 1
  done
)

# play NAME FOLDER: plays a script of tests/screen on the real windows. Prints the difference.
play() (
  local script=$root/tests/screen/$1.kw work=$2 line number=0
  source "$root/tests/screen/comparison.sh"
  put_back "$wine_home/kept-710"
  cp "$script" "$work/script.kw"
  SAMPLE_TOOL_ANSWER=cancel run_wine 240 'C:\Kitwright\kitwright-drive.exe' < "$script" | tr -d '\r' > "$work/driver"
  put_back "$wine_home/kept-710"
  run_wine 600 'C:\Kitwright\play-on-windows.exe' 'C:\Kitwright\Kitwright.exe' "Z:${work//\//\\}\\script.kw" \
    "Z:${work//\//\\}\\driver" 2> "$work/errors" | while IFS= read -r line; do
    line=${line%$'\r'}
    printf '%s\n' "$line"
    [[ -n ${KITWRIGHT_PICTURES:-} && $line =~ ^(page|modal|message|question) ]] || continue
    number=$((number + 1))
    sleep 0.7
    LD_PRELOAD= import -window root "$KITWRIGHT_PICTURES/$(printf '%s-%02d-%s' "$1" "$number" "$(tr -cs '[:alnum:]\n' - <<< "${line:0:40}")").png"
  done > "$work/seen"
  # Grids and trees draw themselves, and menus of another program cannot be read.
  plain_driver "$work/driver" | grep -v '^menu ' | awk '!/^  \| / { grid = /\.(Grid|TreeView1|treFeatures)/ } !(grid && /^  \| /)' | bare > "$work/expected"
  bare < "$work/seen" > "$work/printed"
  diff -au --label "$1 driver" --label "$1 on the screen" "$work/expected" "$work/printed"
)

# As on Linux, a run that fails is tried again before it counts; each try that failed is told.
readonly most_tries=2

# try_one NAME FOLDER: a script and the judgement of its packages. The status 77 as for run_one.
try_one() {
  run_one "$1" "$2" > "$wine_home/said/$1" 2>&1 || return
  judge_built "$1" "$2" > "$wine_home/judged/$1" 2>&1
}

# worker NUMBER: runs what no other worker has begun.
worker() {
  local work=$wine_home/work-$1 name begun try status
  mkdir -p "$work"
  if (($1 > 1)); then export WINEPREFIX=$wine_home/prefix-$1; fi
  for name in "${names[@]}"; do
    mkdir "$wine_home/begun/$name" 2> /dev/null || continue
    begun=$SECONDS
    for ((try = 1; try <= most_tries; ++try)); do
      rm -f "$wine_home/judged/$name"
      status=0
      try_one "$name" "$work" || status=$?
      ((status != 0 && status != 77)) || break
      tail -qn 100 "$wine_home/said/$name" "$wine_home/judged/$name" 2> /dev/null || true
      echo "script.$name: try $try failed"
    done
    case $status in
      0)
        touch "$wine_home/passed/$name"
        echo "[       OK ] script.$name ($((SECONDS - begun)) s)"
        ;;
      77) echo "script.$name: $(tail -n 1 "$wine_home/said/$name")" > "$wine_home/skipped/$name" ;;
      *)
        touch "$wine_home/failed/$name"
        echo "[  FAILED  ] script.$name ($((SECONDS - begun)) s)"
        ;;
    esac
  done
  end_server
}

# player NUMBER: plays what no other player has begun.
player() {
  local work=$wine_home/work-$1 name begun try result
  mkdir -p "$work"
  if (($1 > 1)); then export WINEPREFIX=$wine_home/prefix-$1; fi
  for name in "${plays[@]}"; do
    mkdir "$wine_home/begun/screen:$name" 2> /dev/null || continue
    begun=$SECONDS
    for ((try = 1; try <= most_tries; ++try)); do
      result=passed
      play "$name" "$work" && break
      result=failed
      echo "screen:$name: try $try failed"
    done
    touch "$wine_home/$result/screen:$name"
    echo "screen:$name $result ($((SECONDS - begun)) s)"
  done
  end_server
}

end_server
keep "$wine_home/kept-bare"
for level in "${levels[@]}"; do
  put_back "$wine_home/kept-bare"
  set_up "$level"
done
for ((number = 2; number <= workers; ++number)); do cp -a "$WINEPREFIX" "$wine_home/prefix-$number"; done

mkdir "$wine_home"/{begun,said,judged,passed,failed,skipped}
names=() skipped=() plays=()
asked=("$@")
if [[ ${#asked[@]} -eq 0 ]]; then
  for script in tests/scripts/*.kw; do asked+=("$(basename "$script" .kw)"); done
  for script in tests/screen/*.kw; do asked+=("screen:$(basename "$script" .kw)"); done
  asked+=(settings_run@32-bit settings_whole@32-bit package_run_710@rewritten everything_700@rewritten)
fi
for name in "${asked[@]}"; do
  reason=$(not_run "$name")
  if [[ $name == screen:* ]]; then
    plays+=("${name#screen:}")
  elif [[ -n $reason ]]; then skipped+=("script.$name: $reason"); else names+=("$name"); fi
done
started=()
for ((number = 1; number <= workers; ++number)); do
  worker "$number" &
  started+=($!)
done
wait "${started[@]}"
# Behind the others, on a display each.
started=()
for ((number = 1; number <= workers && number <= ${#plays[@]}; ++number)); do
  if ((number > 1)); then start_display; fi
  player "$number" &
  started+=($!)
done
if [[ ${#started[@]} -gt 0 ]]; then wait "${started[@]}"; fi

for name in $(ls "$wine_home/skipped"); do skipped+=("$(cat "$wine_home/skipped/$name")"); done
mapfile -t failed < <(ls "$wine_home/failed" | sed 's/^/script./')
cat "$wine_home/judged/"* 2> /dev/null | grep '^judged' || true
echo "[  PASSED  ] $(ls "$wine_home/passed" | wc -l) tests."
grep -v '^#' "$here/scripts-not-run.txt" | grep ':' | sed 's/^/Not judged: /' || true
if [[ ${#skipped[@]} -gt 0 ]]; then
  echo "[  SKIPPED ] ${#skipped[@]} tests, listed below:"
  printf '[  SKIPPED ] %s\n' "${skipped[@]}"
fi
[[ ${#failed[@]} -gt 0 ]] || exit 0
echo "[  FAILED  ] ${#failed[@]} tests, listed below:"
printf '[  FAILED  ] %s\n' "${failed[@]}"
exit 1
