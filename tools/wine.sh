# shellcheck shell=bash
# Wine for the project's own needs: prefixes, a display, and running one Windows program. To be sourced, by bash.
#
# Everything lies below build/: the Wine itself (wine32), a prefix as Wine makes it (prefix-template, made once) and the
# clones that programs run in. The folder of a Wine laid out elsewhere by setup-wine32 may be given in VARCOLIN_WINE.

project=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd)
build=$project/build
wine_folder=${VARCOLIN_WINE:-$build/wine32}
display_server=

# Runs Wine in the prefix that WINEPREFIX names. Wine's services outlive the program that started them and keep what
# they inherit open, so nothing started here may hold the caller's locks.
wine() { "$wine_folder/wine" "$@" 9>&-; }

# Lays out the Wine when it is missing; fails, saying why, when it cannot.
wine_ready() { [ -n "${VARCOLIN_WINE:-}" ] || "$project/tools/setup-wine32" "$wine_folder"; }

# Makes the template prefix when it is missing: 20 to 30 seconds, once for a build folder.
prefix_template() {
  (
    flock 9
    [ ! -d "$build/prefix-template" ] || exit 0
    wine_ready || exit 1
    rm -rf -- "$build/prefix-new"
    export WINEPREFIX=$build/prefix-new
    # without a display, and without the offers to fetch other runtimes
    if ! DISPLAY='' WINEDLLOVERRIDES='mscoree,mshtml=' timeout 180 "$wine_folder/wine" wineboot -i \
      </dev/null >"$build/prefix-template.log" 2>&1 9>&-; then
      cat "$build/prefix-template.log" >&2
      echo "Wine could not make a prefix" >&2
      exit 1
    fi
    timeout 60 "$wine_folder/wine" --server -w 9>&-
    mv -- "$build/prefix-new" "$build/prefix-template"
  ) 9>"$build/prefix-template.lock"
}

# prefix_clone FOLDER: a fresh prefix there, whatever was in its place. Never hard links: Wine writes in place.
prefix_clone() {
  prefix_template || return 1
  prefix_remove "$1"
  cp -a --reflink=auto -- "$build/prefix-template" "$1"
}

# prefix_end FOLDER: ends every process of the prefix.
prefix_end() {
  [ ! -d "$1" ] || WINEPREFIX=$1 timeout 30 "$wine_folder/wine" --server -k </dev/null >/dev/null 2>&1 9>&- || true
}

# prefix_remove FOLDER: ends its processes and removes it.
prefix_remove() {
  prefix_end "$1"
  rm -rf -- "$1"
}

# display_begin: a display of its own on a free number, in DISPLAY; display_end takes it away. Nothing happens when the
# caller has a display set up for the whole run already (VARCOLIN_DISPLAY).
display_begin() {
  if [ -n "${VARCOLIN_DISPLAY:-}" ]; then
    export DISPLAY=$VARCOLIN_DISPLAY
    return
  fi
  local number_file number='' tries
  number_file=$(mktemp "$build/display.XXXXXX")
  Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$number_file" </dev/null >/dev/null 2>&1 9>&- &
  display_server=$!
  for ((tries = 0; tries < 100; ++tries)); do
    read -r number <"$number_file" && break
    kill -0 "$display_server" 2>/dev/null || break
    sleep 0.1
  done
  rm -f -- "$number_file"
  [ -n "$number" ] || { echo "no virtual display: Xvfb did not start" >&2; return 1; }
  export DISPLAY=:$number VARCOLIN_DISPLAY=:$number
}

display_end() {
  [ -n "$display_server" ] || return 0
  kill "$display_server" 2>/dev/null || true
  wait "$display_server" 2>/dev/null || true
  display_server=
  unset VARCOLIN_DISPLAY
}
