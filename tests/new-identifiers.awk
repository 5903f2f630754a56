# Numbers the identifiers that are not in the file `known`: new ones, as {new 1}, {new 2} in the order in which they appear.
BEGIN {
  hex = "[0-9A-Fa-f]"
  four = hex hex hex hex
  guid = "[{]" four four "-" four "-" four "-" four "-" four four four "[}]"
  while ((getline id < known) > 0) names[toupper(id)] = id
}
{
  rest = $0
  line = ""
  while (match(rest, guid)) {
    id = toupper(substr(rest, RSTART, RLENGTH))
    if (!(id in names)) names[id] = "{new " ++count "}"
    line = line substr(rest, 1, RSTART - 1) names[id]
    rest = substr(rest, RSTART + RLENGTH)
  }
  print line rest
}
