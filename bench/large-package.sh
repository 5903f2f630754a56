# Sourced by benchmarks. They set $work (a folder for what is made) and $source (the folder of the sample package).

# repack MSI FOLDER: puts the files of a folder into the database's one cabinet.
repack() {
  mkdir -p "$work/repack/Cabs"
  (cd "$2" && gcab -c -z "$work/repack/Cabs/Cab1.CAB" -- * >/dev/null)
  printf 'Name\tData\r\ns72\tv0\r\nCabs\tName\r\nCab1.CAB\tCab1.CAB\r\n' >"$work/repack/Cabs.idt"
  (cd "$work/repack" && msibuild "$1" -i Cabs.idt >/dev/null)
}

# make_large_package MEGABYTES FILES: adds its input to the sample package, in pieces of one size. The content lies in
# $work/content afterwards.
make_large_package() {
  mkdir "$work/content" "$work/pieces"
  (cd "$work" && msiinfo extract "$source/Kte710.msi" Cabs.Cab1.CAB >cab && cabextract -q -d content cab)
  head -c "${1}M" | split -b "$(($1 * 1048576 / $2))" -a 5 -d - "$work/pieces/Piece" || true
  {
    local component sequence piece name
    component=$(msiinfo export "$source/Kte710.msi" File | cut -f 2 | sed -n 4p)
    sequence=$(msiinfo export "$source/Kte710.msi" File | cut -f 8 | tr -d '\r' | sort -n | tail -1)
    msiinfo export "$source/Kte710.msi" File
    for piece in "$work"/pieces/*; do
      name=${piece##*/}
      sequence=$((sequence + 1))
      printf '%s\t%s\t%s.BIN\t%s\t\t\t16384\t%s\r\n' "$name" "$component" "P${name: -5}" "$(stat -c %s "$piece")" "$sequence"
    done
  } >"$work/File.idt"
  (cd "$work" && msibuild "$source/Kte710.msi" -i File.idt >/dev/null)
  mv "$work"/pieces/* "$work/content"
  repack "$source/Kte710.msi" "$work/content"
}
