#!/usr/bin/env bash
# docs/guide/make-screenshots.sh [FOLDER]
# Makes the pictures of the guide, in docs/guide/pictures or in the given folder. Works through a
# copy of the example in the editor's window, offscreen and with separate settings.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=/dev/null
. "$root/packaging/packages.sh"

# That file defines the lists. shellcheck disable=SC2154
ensure_packages "to make the guide's pictures" "${build_packages[@]}" "${guide_packages[@]}"
(cd "$root" && build_preset release guide_screenshots quillmap-tool)
build=$root/build/release

mkdir -p "${1:-$root/docs/guide/pictures}"
pictures=$(cd "${1:-$root/docs/guide/pictures}" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$root/examples/highlands" "$work/highlands"
mkdir "$work/raw" "$work/config"

# The settings of the user and of the desktop must not change the pictures.
env -u QT_QPA_PLATFORMTHEME -u QT_STYLE_OVERRIDE -u QT_SCALE_FACTOR LC_ALL=C.UTF-8 \
  HOME="$work" XDG_CONFIG_HOME="$work/config" QT_QPA_PLATFORM=offscreen \
  timeout 120 "$build/docs/guide/screenshots/guide_screenshots" "$work/highlands" "$work/raw" \
  >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
"$build/quillmap-tool" render --quiet "$work/highlands/highlands.xml" -o "$work/raw/flags.png" \
  --size 512 --flag Town --flag Farm --flag Hunting

for picture in "$work"/raw/*.png; do
  pngquant --speed 1 --nofs --strip --force --output "$pictures/${picture##*/}" 96 -- "$picture"
done
du -b "$pictures"/*.png
