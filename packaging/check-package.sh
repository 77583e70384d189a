#!/usr/bin/env bash
# packaging/check-package.sh [--keep]
# Builds the Debian package, checks it and its files, and runs the programs in a clean Debian.
# Everything goes to build/package. The clean system takes some 700 MB in build/package/root, and is
# removed at the end unless --keep is given. Making it needs root (it uses sudo if you are not root)
# and a network, because it is made from Debian's archive (DEBIAN_MIRROR names another one).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. packaging/packages.sh

ensure_packages "to make and check the package" "${build_packages[@]}" "${package_packages[@]}"

# The archive from which this machine gets its packages.
mirror=${DEBIAN_MIRROR:-$(apt-get indextargets --format '$(SITE)' | head -n 1)}
suite=bookworm
build=$PWD/build/package
tree=$build/tree
root=$build/root
keep=${1:-}
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

step() { echo "--    $*"; }

failures=0
# section TITLE COMMAND...   Shows the output of the command only if it fails.
section() {
  local title=$1 output
  shift
  if output=$("$@" 2>&1); then
    echo "ok    $title"
  else
    echo "FAIL  $title"
    printf '%s\n' "$output" | tail -n 60 | sed 's/^/      /'
    failures=$((failures + 1))
  fi
}

# Builds from scratch with the distribution's flags, which also make paths in the binaries relative.
build_package() {
  "${as_root[@]}" rm -rf "$root" && rm -rf "$build" || return 1
  (
    eval "$(DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow dpkg-buildflags --export=sh)"
    # CMake does not read the preprocessor's flags from their own variable.
    export CXXFLAGS="$CXXFLAGS $CPPFLAGS"
    cmake --preset package && cmake --build --preset package && cd "$build" && cpack
  )
}

man_pages() {
  local page output bad=0
  for page in "$tree"/usr/share/man/man1/*.gz; do
    output=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 \
      man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
    [ -z "$output" ] || { echo "$output"; bad=1; }
  done
  return $bad
}

every_program_has_its_files() {
  local program name bad=0
  for program in "$tree"/usr/bin/*; do
    name=$(basename "$program")
    for file in "man/man1/$name.1.gz" "bash-completion/completions/$name"; do
      [ -s "$tree/usr/share/$file" ] || { echo "no $file"; bad=1; }
    done
  done
  return $bad
}

# Every file with the program's version must have the version of CMakeLists.txt.
one_version() {
  local version file bad=0
  version=$(dpkg-deb --field "$package" Version)
  for file in packaging/man/*.1; do
    head -n 1 "$file" | grep -qF "\"Quillmap ${version%-*}\"" || { echo "$file"; bad=1; }
  done
  grep -qF "<release version=\"${version%-*}\"" packaging/*.metainfo.xml ||
    { echo "the list of releases"; bad=1; }
  [ "$(dpkg-parsechangelog -l packaging/debian/changelog -S Version)" = "$version" ] ||
    { echo "packaging/debian/changelog"; bad=1; }
  return $bad
}

# Files must not contain the path of the build folder.
no_path_of_this_machine() { ! grep -rlF -e "$PWD" "$tree" "$tree.control"; }

depends_on_qt() {
  local depends
  depends=$(dpkg-deb --field "$package" Depends)
  echo "Depends: $depends"
  for library in libc6 libqt5core5a libqt5gui5 libqt5widgets5; do
    grep -qw "$library" <<<"$depends" || return 1
  done
}

in_root() { "${as_root[@]}" chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin HOME=/tmp "$@"; }

make_root() {
  "${as_root[@]}" debootstrap --variant=minbase "$suite" "$root" "$mirror"
}

install_package() {
  "${as_root[@]}" cp "$package" "$root/tmp/" &&
    in_root apt-get update -qq &&
    in_root DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
      "/tmp/$(basename "$package")"
}

no_library_is_missing() {
  local program
  for program in "$tree"/usr/bin/*; do
    ! in_root ldd "/usr/bin/$(basename "$program")" | grep 'not found' || return 1
  done
}

batch_run() {
  local map=$root/tmp/highlands/Output/highlands.map
  in_root cp -r /usr/share/doc/quillmap/examples/highlands /tmp/ &&
    in_root sh -c 'cd /tmp/highlands && quillmap --no-gui --config highlands.xml --output Output' &&
    [ "$(od -An -v -td4 -w24 "$map" | xargs)" = "2048 2048 15360 15360 0 0" ] &&
    [ "$(find "$root/tmp/highlands/territoryTypes" -name '*.xml' | wc -l)" -eq 4 ]
}

# The window needs more of Qt's plugins, so it must open with the project and keep running.
editor_opens() {
  local code=0 log
  log=$(in_root QT_QPA_PLATFORM=offscreen timeout 10 \
    quillmap --config /tmp/highlands/highlands.xml 2>&1) || code=$?
  echo "exit code $code"
  echo "$log"
  [ "$code" -eq 124 ] && grep -q 'Loading layer "Airfields"' <<<"$log" &&
    ! grep -q -e Failed -e 'Could not' <<<"$log"
}

tool_exports() {
  in_root quillmap-tool check /tmp/highlands/highlands.xml &&
    in_root quillmap-tool export /tmp/highlands/highlands.xml -o /tmp/exported &&
    [ "$(stat -c %s "$root/tmp/exported/highlands.map")" -eq \
      $((16 + 4 + 2048 * 2048 + 4 + 2048 * 2048 / 2)) ]
}

purge_leaves_nothing() {
  in_root DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq quillmap &&
    ! find "$root/usr" -ipath '*quillmap*' | grep .
}

step "building the package"
section "package" build_package
package=$(find "$build" -maxdepth 1 -name 'quillmap_*.deb')
[ -n "$package" ] || exit 1
rm -rf "$tree" "$tree.control"
dpkg-deb --extract "$package" "$tree"
dpkg-deb --control "$package" "$tree.control"
section "desktop entry" desktop-file-validate "$tree/usr/share/applications/quillmap.desktop"
section "metadata" appstreamcli validate --no-net --pedantic \
  "$tree/usr/share/metainfo/org.quillmap.quillmap.metainfo.xml"
section "metadata, entry and icons together" appstreamcli validate-tree --no-net "$tree/usr"
section "man pages" man_pages
section "each program has man page and completion" every_program_has_its_files
section "one version everywhere" one_version
section "no path of this machine" no_path_of_this_machine
section "dependencies" depends_on_qt
section "lintian" lintian --allow-root --fail-on error,warning,info --display-info "$package"

step "making a clean system"
"${as_root[@]}" rm -rf "$root"
section "clean $suite" make_root
section "the package installs there" install_package
section "no library is missing" no_library_is_missing
section "quillmap --no-gui exports the example" batch_run
section "quillmap opens its window" editor_opens
section "quillmap-tool exports the example" tool_exports
section "purging leaves nothing" purge_leaves_nothing
[ "$keep" = --keep ] || "${as_root[@]}" rm -rf "$root"

[ "$failures" -eq 0 ] && echo "All checks of $(basename "$package") passed." ||
  echo "$failures checks failed."
exit "$((failures > 0))"
