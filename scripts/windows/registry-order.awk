# Sorts what is printed of registry exports: the values of each key, whose order Wine does not keep, and the keys of
# each run of them by their paths without identifiers, then by their values. New identifiers, whose numbers go by their
# order, lose them there.
function flush_value() {
  if (value != "") values[++value_count] = value
  value = ""
}
function sort_into(list, count,   i, j, kept) {
  for (i = 2; i <= count; ++i) {
    kept = list[i]
    for (j = i - 1; j >= 1 && list[j] > kept; --j) list[j + 1] = list[j]
    list[j + 1] = kept
  }
}
function flush_key(   i, path, text) {
  flush_value()
  if (key == "") return
  sort_into(values, value_count)
  path = key
  gsub(/[{][^}]*[}]/, "{}", path)
  text = ""
  for (i = 1; i <= value_count; ++i) text = text "\n" values[i]
  keys[++key_count] = path "\002" text "\002" key text
  key = ""
  value_count = 0
}
function flush_keys(   i, parts) {
  flush_key()
  sort_into(keys, key_count)
  for (i = 1; i <= key_count; ++i) {
    split(keys[i], parts, "\002")
    print parts[3] "\n"
  }
  key_count = 0
}
/^\[HKEY/ {
  flush_key()
  gsub(/[{]new [0-9]+[}]/, "{new}")
  key = $0
  next
}
key != "" && (continued || /^("|@=)/) {
  gsub(/[{]new [0-9]+[}]/, "{new}")
  if (continued) {
    sub(/^ +/, "")
  } else {
    flush_value()
  }
  value = value $0
  continued = sub(/\\$/, "", value)
  next
}
key_count + (key != "") > 0 && $0 == "" { next }
{
  flush_keys()
  print
}
END { flush_keys() }
