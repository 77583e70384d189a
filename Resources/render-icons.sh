#!/usr/bin/env bash
# Resources/render-icons.sh
# Draws each svg/NAME.svg as png/NAME.png, in the size it was drawn for, and as png/NAME@2x.png for
# screens with two pixels per point. The program's own icon comes in every size that desktops show.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
. ../packaging/packages.sh
ensure_packages "to render the icons" "${icon_packages[@]}"

rm -rf png
for drawing in svg/*.svg svg/*/*.svg; do
  name=${drawing#svg/}
  name=${name%.svg}
  mkdir -p "$(dirname "png/$name")"
  case $name in
    quillmap) sizes=(32 48 64 128 256) ;;
    quillmap-small) sizes=(16 24) ;; # fewer and bolder shapes
    *)
      rsvg-convert --output "png/$name.png" "$drawing"
      rsvg-convert --zoom 2 --output "png/$name@2x.png" "$drawing"
      continue
      ;;
  esac
  for size in "${sizes[@]}"; do
    rsvg-convert --width "$size" --height "$size" --output "png/quillmap-$size.png" "$drawing"
  done
done
