# Sourced by what compares a transcript of the driver with what was read from the screen.

# The lines of the driver that have something to do with the screen, in the words of the screen: no access keys, no
# state that only the program knows, no columns without a heading. Blanks do not count, since windows break lines.
plain_driver() { # TRANSCRIPT
  sed -E -e '/^(exit|call|run|status|hide|focus|modal-end|file-dialog|folder-dialog)/d' \
    -e 's/ kind=[a-z]+//; s/ busy=0 / /; s/ back=[a-z]+$//; s/ selected=[0-9]+//; s/ extent=[a-z0-9]+$//' \
    -e 's/ enabled=[01] visible=0.*/ visible=0/; s/&//g' \
    -e '/^ +- /{ s/ tag="[^"]*"$//; s/ grey$//; s/ bold$//; s/ image=[A-Za-z0-9]+$//; s/^ +- /  | / }' "$1"
}
# Grids: only the columns with a heading.
grids() {
  awk '
    !/^  \| / { grid = /\.Grid/; header = 1; print; next }
    !grid { print; next }
    {
      count = split(substr($0, 5), cells, "<TAB>")
      if (header) { for (i = 1; i <= count; i++) shown[i] = cells[i] != ""; header = 0 }
      line = "  |"
      for (i = 1; i <= count; i++) if (shown[i]) line = line " " cells[i]
      print line
    }'
}
bare() { sed -E -e 's/<TAB>//g; s/<CR>|<LF>//g; s/[ \t]+//g' -e '/^\|$/d'; }
