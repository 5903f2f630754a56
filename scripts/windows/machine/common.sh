# To be sourced by the programs of this folder, which take the place of the native build's in what prepares and examines
# a script run's machine. scripts/windows/run-scripts.sh sets WINEPREFIX, KITWRIGHT_WINE_AS (the words that make the
# machine's user of whoever calls) and KITWRIGHT_WINE_OWNER (that user for chown, or nothing).
set -euo pipefail
read -r -a as_user <<< "$KITWRIGHT_WINE_AS"
drive=$WINEPREFIX/drive_c

# What a caller put onto the machine belongs to its user.
give_to_user() {
  if [[ -n $KITWRIGHT_WINE_OWNER ]]; then
    find "$drive" -mindepth 1 -maxdepth 1 ! -name windows -exec chown -hR "$KITWRIGHT_WINE_OWNER" {} +
    chown "$KITWRIGHT_WINE_OWNER" "$drive"
  fi
}
# on_machine PROGRAM [ARGUMENT...]
on_machine() { (cd "$drive" && "${as_user[@]}" timeout --kill-after=5 120 wine "$@"); }
