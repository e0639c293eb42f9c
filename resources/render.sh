#!/usr/bin/env bash
# Renders png/NAME-16.png and png/NAME-32.png from svg/NAME.svg, and application.ico, the icon of Windows programs. Run it
# after changing an SVG; the pictures are kept so that a build needs no renderer.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

render() { rsvg-convert --width="$2" --height="$2" --output="$3" "svg/$1.svg"; }

# A number of up to four bytes, the lowest first.
little_endian() {
    local number=$1 bytes=$2
    for ((; bytes > 0; --bytes)); do
        printf '%b' "\\x$(printf %02x $((number & 255)))"
        number=$((number >> 8))
    done
}

# An icon file holds a table of its pictures and then these, here as PNGs.
write_icon() {
    local target=$1 offset size file
    shift
    offset=$((6 + 16 * $#))
    {
        little_endian 0 2 && little_endian 1 2 && little_endian $# 2
        for file in "$@"; do
            size=${file##*-} size=${size%.png}
            little_endian $((size & 255)) 1 && little_endian $((size & 255)) 1 && little_endian 0 2  # 256 is written as 0
            little_endian 1 2 && little_endian 32 2
            little_endian "$(stat -c %s "$file")" 4 && little_endian "$offset" 4
            offset=$((offset + $(stat -c %s "$file")))
        done
        cat "$@"
    } >"$target"
}

for source in svg/*.svg; do
    name=$(basename "$source" .svg)
    for size in 16 32; do
        render "$name" "$size" "png/$name-$size.png"
    done
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for size in 16 24 32 48 256; do
    render application "$size" "$work/icon-$size.png"
done
write_icon application.ico "$work"/icon-{16,24,32,48,256}.png
