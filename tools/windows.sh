# Sourced by the scripts that walk the wizard's real windows on a virtual display, with keyboard and mouse. They set
# $program (the wizard), $machine (the folder that it works on) and $folder (where the pictures go).
wait_seconds=60
number=0

fail() {
  echo "${0##*/}: $*" >&2
  import -window root "$folder/failed.png" 2>/dev/null && echo "${0##*/}: see $folder/failed.png" >&2
  exit 1
}

children=()
end_children() {
  for child in "${children[@]}"; do kill "$child" 2>/dev/null || true; done
}
trap end_children EXIT

# A virtual display with a window manager.
start_display() {
  local numbers
  numbers=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$numbers" >/dev/null 2>&1 &
  children+=($!)
  for _ in {1..100}; do
    [[ -s $numbers ]] && break
    sleep 0.1
  done
  [[ -s $numbers ]] || { echo "${0##*/}: no virtual display" >&2; exit 1; }
  export DISPLAY=:$(<"$numbers")
  rm -f "$numbers"
  unset WAYLAND_DISPLAY
  openbox --sm-disable >/dev/null 2>&1 &
  children+=($!)
  sleep 0.5
}

# The number of the window that has the focus now, and its title.
active() { xdotool getactivewindow 2>/dev/null || true; }
title() { xdotool getwindowname "$(active)" 2>/dev/null || true; }

# Waits until the window with this title has the focus.
await() {
  local tries=$((wait_seconds * 10))
  until [[ $(title) == "$1" ]]; do
    ((tries-- > 0)) || fail "no window \"$1\"; in front is \"$(title)\""
    kill -0 "$wizard" 2>/dev/null || fail "the wizard ended while \"$1\" was awaited"
    sleep 0.1
  done
  sleep 0.4
}

# Saves a picture of the window in front; with a second word, of all that is on the screen.
picture() {
  number=$((number + 1))
  local name
  name=$(printf '%02d-%s' "$number" "$(tr -cs 'A-Za-z0-9\n' '-' <<<"$1" | sed 's/-*$//')")
  if [[ $# -gt 1 ]]; then
    import -window root -trim +repage "$folder/$name.png"
  else
    import -window "$(active)" "$folder/$name.png"
  fi
  echo "  page $1"
}

key() { xdotool key --clearmodifiers "$@"; sleep 0.3; }
write() { xdotool type --delay 15 "$1"; sleep 0.3; }

# Clicks at a place of the window in front; negative numbers count from its right and lower edge.
click() {
  local x=$1 y=$2 window WIDTH HEIGHT
  window=$(active)
  eval "$(xdotool getwindowgeometry --shell "$window" | grep -E '^(WIDTH|HEIGHT)=')"
  ((x >= 0)) || x=$((WIDTH + x))
  ((y >= 0)) || y=$((HEIGHT + y))
  xdotool mousemove --window "$window" "$x" "$y"
  sleep 0.2
  xdotool click 1
  sleep 0.4
}

start_wizard() {
  "$program" &
  wizard=$!
  children+=("$wizard")
  await Kitwright
}

# Leaves the last page, and waits until the wizard has ended.
end_wizard() {
  key alt+e
  for _ in {1..50}; do
    kill -0 "$wizard" 2>/dev/null || break
    sleep 0.1
  done
  kill -0 "$wizard" 2>/dev/null && fail "the wizard did not end"
  wait "$wizard" || fail "the wizard ended with $?"
}

# Waits until the build has left this file and cleaned up.
await_built() {
  for _ in $(seq $((wait_seconds * 10))); do
    [[ -f $1 && -z $(ls -A "$machine/drive_c/Temp") ]] && break
    sleep 0.1
  done
  await Finish
}
