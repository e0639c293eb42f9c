#!/usr/bin/env bash
# Renders png/NAME-16.png and png/NAME-32.png from svg/NAME.svg. Run it after changing an SVG; the PNGs are kept so that
# a build needs no renderer.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

for source in svg/*.svg; do
    name=$(basename "$source" .svg)
    for size in 16 32; do
        rsvg-convert --width=$size --height=$size --output="png/$name-$size.png" "$source"
    done
done
