# To be sourced: a Windows machine of its own under Wine, for the life of the script that asks for it.
#
#   start_wine       makes a fresh prefix and a virtual display, and keeps one server for all programs
#   start_display    makes another virtual display, for the programs that start from then on
#   run_wine SECONDS PROGRAM [ARGUMENT...]
#   manage_windows   starts a window manager; without one a dialog box may come up without the focus
#   end_server       ends the server of the prefix, and with it all its programs; what it knew is then in files
#   stop_wine        ends all of them; called at the script's end in any case
#
# The prefix and everything else of a run lies in $wine_home; WINEPREFIX may be set to others below it.

# Root is above folder protection and the read-only attribute, so nothing would be judged for them: run as root, all of
# this runs as another user, for whom what is tested must be readable.

wine_home=$(mktemp -d "${TMPDIR:-/tmp}/kitwright-wine.XXXXXX")
# By the locale Wine knows what the names of files on this system mean.
export LC_ALL=C.UTF-8
export WINEPREFIX=$wine_home/prefix WINEDEBUG=-all WINEARCH=win64 TZ=UTC
# No browser engine and no menu entries are wanted.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe="
# Servers leave a folder behind each, which goes with the rest.
mkdir -m 1777 "$wine_home/tmp"
export TMPDIR=$wine_home/tmp
as_user=()
if [[ $(id -u) -eq 0 ]]; then
  readonly nobody=65534
  as_user=(setpriv --reuid="$nobody" --regid="$nobody" --clear-groups env HOME="$wine_home/home" USER=nobody)
  chmod 755 "$wine_home"
fi

end_server() {
  "${as_user[@]}" wineserver -k 2> /dev/null || true
  "${as_user[@]}" wineserver -w
}

stop_wine() {
  local prefix job process
  # What runs beside this script, the display among it.
  for job in $(jobs -p); do kill "$job" 2> /dev/null || true; done
  for prefix in "$wine_home"/prefix*; do
    WINEPREFIX=$prefix "${as_user[@]}" wineserver -k 2>/dev/null || true
  done
  # Some of Wine's own programs outlive a server that was ended.
  for process in /proc/[0-9]*; do
    if grep -qzs "^WINEPREFIX=$wine_home/" "$process/environ"; then kill -9 "${process#/proc/}" 2>/dev/null || true; fi
  done
  chmod -R u+w "$wine_home" 2>/dev/null || true
  rm -rf "$wine_home"
}
trap stop_wine EXIT
trap "exit 143" TERM

# Makes files and folders belong to the user that programs run as.
give_to_user() {
  if [[ ${#as_user[@]} -gt 0 ]]; then chown -hR "$nobody:$nobody" "$@"; fi
}

start_display() {
  local fifo
  fifo=$(mktemp -u "$wine_home/display.XXXXXX")
  mkfifo "$fifo"
  LD_PRELOAD= Xvfb -displayfd 3 -ac -screen 0 1280x1024x24 -nolisten tcp 3> "$fifo" > "$fifo.txt" 2>&1 &
  DISPLAY=:$(head -n 1 "$fifo")
  export DISPLAY
}

start_wine() {
  # An attempt to open a window without a display would spoil the server for all that come after.
  mkdir -p "$WINEPREFIX" "$wine_home/home"
  give_to_user "$WINEPREFIX" "$wine_home/home"
  start_display
  "${as_user[@]}" wineserver -p
  "${as_user[@]}" timeout 120 wine wineboot -i > "$wine_home/boot.txt" 2>&1
}

manage_windows() {
  openbox --sm-disable > "$wine_home/openbox.txt" 2>&1 &
  sleep 0.5
}

run_wine() {
  local seconds=$1
  shift
  # A folder that the user may not enter would be told about in every run.
  (
    if [[ $PWD != "$wine_home"* ]]; then cd "$wine_home"; fi
    exec "${as_user[@]}" timeout --kill-after=5 "$seconds" wine "$@"
  )
}
