# Sourced by the scripts in the project's root. Installs missing Debian packages.

# The packages that each command needs in addition to a bare Debian 12.
build_packages=(ca-certificates cmake g++ git ninja-build qtbase5-dev qtbase5-dev-tools)
run_packages=(fonts-dejavu-core)
test_packages=(fonts-dejavu-core imagemagick openbox python3 python3-pil x11-utils xauth xvfb)
check_packages=(clang clang-format clang-tidy clazy libclang-14-dev llvm-14-dev)
coverage_packages=(gcovr)
fuzz_packages=(clang libclang-rt-14-dev)
guide_packages=(fonts-dejavu-core pngquant)
mutate_packages=(ccache)
icon_packages=(librsvg2-bin)
package_packages=(appstream debootstrap desktop-file-utils dpkg-dev lintian man-db)
bench_packages=(libbenchmark-dev libopencv-dev python3 python3-numpy python3-pil)

# ensure_packages PURPOSE PACKAGE...
# Installs missing packages, and says which and why. Prints nothing if all are installed.
ensure_packages() {
  local purpose=$1 package missing=()
  shift
  for package in "$@"; do
    if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
      missing+=("$package")
    fi
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  echo "Installing the packages that are needed $purpose: ${missing[*]}"
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# A build links more than 200 test programs. This linker, of the same package as the default one, takes
# a third of the time.
export LDFLAGS=${LDFLAGS:--fuse-ld=gold}

# Options of the build beside those of its preset, such as -DNAME=VALUE.
build_options=()

# build_preset PRESET [TARGET...]
# Configures and builds quietly. Shows the output of the tools only if they fail, for all files.
build_preset() {
  local preset=$1 log
  shift
  log=$(mktemp)
  if ! { cmake --preset "$preset" "${build_options[@]}" && cmake --build --preset "$preset" ${1:+--target "$@"} -- -k 0; } \
    >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "The build of preset '$preset' failed." >&2
    return 1
  fi
  rm -f "$log"
}
