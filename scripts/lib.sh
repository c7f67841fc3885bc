# shellcheck shell=bash disable=SC2034  # what is set here is used by those who source it
# What ./run, ./test and the scripts here share. Source it; it sets root and cache and defines functions.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# What takes long to fetch or to make. It outlives the checkout.
cache=${XDG_CACHE_HOME:-$HOME/.cache}/tervanfx

# Every package, once, by what it is for.
packages_build=(g++ cmake ninja-build python3 libgtest-dev)
packages_test=(python3-pytest python3-fonttools)
packages_native=(libbenchmark-dev clang-format)
packages_sanitize=(clang llvm libclang-rt-14-dev)
packages_x64=(g++-mingw-w64-x86-64-posix fp-utils)
packages_x86=(g++-mingw-w64-i686-posix fp-utils)
packages_wine=(wine wine64 fonts-wine gstreamer1.0-plugins-base gstreamer1.0-plugins-good xvfb)
packages_wine32=(wine wine32 fonts-wine gstreamer1.0-plugins-base gstreamer1.0-plugins-good)
packages_tree=(debootstrap)
packages_demo=(sox jq)
packages_lint=(clang-tidy shellcheck)

# Progress goes to stderr: stdout belongs to the programs that are run.
say() { echo "tervanfx: $*" >&2; }
die() {
  say "$*"
  exit 1
}

can_be_root() { [[ $EUID == 0 ]] || command -v sudo >/dev/null; }
as_root() {
  if [[ $EUID == 0 ]]; then "$@"; else sudo "$@"; fi
}

# Shows the output of a command only when it fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 </dev/null || status=$?
  [[ $status == 0 ]] || tail -n 40 "$log" >&2
  rm -f "$log"
  return $status
}

apt_get() { as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq "$@"; }

install_packages() {
  local package missing=()
  for package in "$@"; do
    [[ " ${missing[*]} " != *" $package "* ]] || continue
    [[ $(dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null) == ii* ]] || missing+=("$package")
  done
  [[ ${#missing[@]} == 0 ]] && return
  can_be_root || die "these packages are missing, and only root or sudo can install them: ${missing[*]}"
  say "installing ${missing[*]}"
  quietly apt_get update || say "the package lists could not all be refreshed; going on with what is there"
  quietly apt_get install -y --no-install-recommends "${missing[@]}" || die "apt-get could not install ${missing[*]}"
}

# configure_and_build PRESET [ninja targets...]
configure_and_build() {
  local preset=$1 build=$root/build/$1
  shift
  # A configuration that was cut short leaves a cache that later ones would trust.
  [[ -f $build/build.ninja ]] || rm -rf "$build"
  # Ninja sees changed CMake files by itself, but not changed presets.
  if [[ ! $build/build.ninja -nt $root/CMakePresets.json ]]; then
    (cd "$root" && cmake --preset "$preset") || return
  fi
  cmake --build "$build" --parallel "$(nproc)" ${1:+--target "$@"}
}
