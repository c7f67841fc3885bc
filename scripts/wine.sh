# shellcheck shell=bash disable=SC2034,SC2154  # shares variables with lib.sh and with those who source it
# Wine: which one runs programs of an architecture, and the prefixes they run in. Needs lib.sh.

wine32_tree=$cache/wine32
wine32_tree_complete=$wine32_tree/.tervanfx-complete  # written last: a tree without it was cut short

export WINEDEBUG=-all
# Neither offers to download the runtimes for .NET and HTML, nor writes menus into the user's desktop.
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"

# in_wine ARCH PREFIX COMMAND...   COMMAND is wine, wineboot or wineserver with arguments
in_wine() {
  use_prefix "$1" "$2"
  "${wine_launcher[@]}" "${@:3}"
}

# use_prefix ARCH PREFIX: for the Wine commands that follow, each with "${wine_launcher[@]}" before it
use_prefix() {
  export WINEPREFIX=$2
  case $1 in
    x64) export WINEARCH=win64 && wine_launcher=() ;;
    x86) export WINEARCH=win32 && wine_launcher=("${wine32_launcher[@]}") ;;
  esac
}

# Sets wine32_launcher to what must stand before a 32-bit Wine's commands. False when there is no such Wine.
find_wine32() {
  if [[ -x /usr/lib/wine/wine ]]; then
    wine32_launcher=()
  elif [[ -f $wine32_tree_complete ]]; then
    wine32_launcher=("$root/scripts/wine32-tree" run)
  else
    return 1
  fi
}

# Finds a 32-bit Wine or makes one available: from the package mirror, or else in a tree of its own.
# On failure no_wine32_reason says why.
no_wine32_reason="the 32-bit Wine does not run"
provide_wine32() {
  find_wine32 && return
  if ! can_be_root; then
    no_wine32_reason="there is no 32-bit Wine, and only root or sudo could install one"
    return 1
  fi
  install_wine32_package && find_wine32 && return
  say "building a 32-bit Debian tree with Wine in $wine32_tree (some minutes, once)"
  install_packages "${packages_tree[@]}"
  quietly "$root/scripts/wine32-tree" make && find_wine32 && return
  no_wine32_reason="wine32 cannot be installed from the package mirror, and no 32-bit tree could be built"
  return 1
}

# Where 32-bit packages cannot join this machine's, it is left as it was.
install_wine32_package() {
  local packages=("${packages_wine32[@]/%/:i386}") added='' plan
  packages=("${packages[@]/wine:i386/wine}")
  if ! dpkg --print-foreign-architectures | grep -qx i386; then
    as_root dpkg --add-architecture i386
    added=yes
    quietly apt_get update || true
  fi
  if plan=$(apt-get -s install --no-install-recommends "${packages[@]}" 2>/dev/null) && ! grep -q ^Remv <<<"$plan"; then
    say "installing ${packages[*]}"
    quietly apt_get install -y --no-install-recommends "${packages[@]}" && return
  fi
  if [[ $added ]]; then
    as_root dpkg --remove-architecture i386
    quietly apt_get update || true
  fi
  return 1
}

# True when the prefix really runs a program.
prefix_works() {
  local status=0
  in_wine "$1" "$2" wine cmd /c exit 42 >/dev/null 2>&1 </dev/null || status=$?
  [[ $status == 42 ]]
}

# furnish_prefix ARCH PURPOSE: what windows need to look as on Windows.
furnish_prefix() {
  # Debian's Wine looks for its own fonts where Debian does not put them. Links, since each Wine brings its own.
  ln -sf /usr/share/wine/fonts/* "$prefix/drive_c/windows/Fonts/"
  if [[ $2 == test ]]; then
    # Desktops of our own have no window manager: none frames a window, and none answers when a window goes, for which
    # Wine waits two seconds each time.
    driver_setting_off "$1" tervan-host Decorated || say "the windows of tervan-host will have no frames"
    driver_setting_off "$1" module_tests Managed || say "the tests of the module will take minutes"
  fi
  touch "$prefix/.tervanfx-furnished"
}

# driver_setting_off ARCH PROGRAM SETTING: of Wine's driver for windows.
driver_setting_off() {
  in_wine "$1" "$prefix" wine reg add "HKCU\\Software\\Wine\\AppDefaults\\$2.exe\\X11 Driver" /v "$3" /d N /f \
    >/dev/null 2>&1 </dev/null
}

# wine_prefix ARCH PURPOSE: sets prefix; makes it when it is missing or was cut short.
wine_prefix() {
  local arch=$1
  prefix=$cache/prefix-$1-$2
  [[ -f $prefix/.tervanfx-ready && -f $prefix/system.reg && -f $prefix/.tervanfx-furnished ]] && return
  mkdir -p "$cache"
  exec 8>"$prefix.lock"
  flock 8
  if [[ ! -f $prefix/.tervanfx-ready || ! -f $prefix/system.reg ]]; then
    say "making the Wine prefix $prefix"
    rm -rf "$prefix"
    in_wine "$arch" "$prefix" wineboot --init >/dev/null 2>&1 </dev/null 8>&- || true
    in_wine "$arch" "$prefix" wineserver --wait 8>&-
    prefix_works "$arch" "$prefix" 8>&- || { say "Wine does not run a $arch program"; exec 8>&-; return 1; }
    touch "$prefix/.tervanfx-ready"
  fi
  [[ -f $prefix/.tervanfx-furnished ]] || furnish_prefix "$@" 8>&-
  exec 8>&-
}

# Starts an X server of our own and points DISPLAY at it: no window ever lands on somebody's desktop.
# display_pid is for its end; Ctrl-C does not reach it, so that programs still end properly.
start_display() {
  local number
  exec 7< <(exec setsid Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp 2>/dev/null)
  display_pid=$!
  read -r number <&7 || die "Xvfb does not start"
  exec 7<&-
  export DISPLAY=:$number
}
