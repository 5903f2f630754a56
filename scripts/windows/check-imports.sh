#!/bin/bash
# check-imports.sh PROGRAM.exe...: fails when a program needs a library that does not come with Windows.
set -euo pipefail

system=" advapi32 comctl32 comdlg32 gdi32 gdiplus hhctrl imm32 kernel32 msi msimg32 msvcrt ole32 oleacc oleaut32 rpcrt4
 shell32 shlwapi user32 uxtheme version winmm winspool.drv ws2_32 "
status=0
for program in "$@"; do
  while read -r library; do
    name=${library,,}
    if [[ $system != *[[:space:]]"${name%.dll}"[[:space:]]* ]]; then
      echo "$program needs $library, which does not come with Windows" >&2
      status=1
    fi
  done < <(x86_64-w64-mingw32-objdump -p "$program" | sed -n 's/^\s*DLL Name: //p')
done
exit "$status"
