#!/usr/bin/env bash
# Runs a Windows program with a window under Wine: on the display given in DISPLAY, or else on a private
# 1920 x 1080 true-colour Xvfb, large enough for the whole main window. The Wine prefix (private to the
# build tree or VELTOR_WINEPREFIX, see cmake/wine-run.sh) gets Liberation Sans and Liberation Mono in place
# of the window's Segoe UI and Cascadia Mono, which Wine lacks: their widths are close enough that no label
# wraps. With --prepare in place of a program it makes the prefix ready and ends.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
wine_run="$here/../cmake/wine-run.sh"
exe="$1"
if [ "$exe" = --prepare ] && [ -z "${VELTOR_BUILD_DIR:-}" ]; then
  echo "wine-gui.sh: --prepare needs VELTOR_BUILD_DIR" >&2
  exit 2
fi

build_dir="${VELTOR_BUILD_DIR:-}"
if [ -z "$build_dir" ]; then
  build_dir="$(cd "$(dirname "$exe")" && pwd)"
  while [ "$build_dir" != "/" ] && [ ! -f "$build_dir/CMakeCache.txt" ]; do build_dir="$(dirname "$build_dir")"; done
fi
export VELTOR_BUILD_DIR="$build_dir"
export WINEPREFIX="${VELTOR_WINEPREFIX:-$build_dir/wineprefix}"

(
  flock 9
  if [ ! -f "$WINEPREFIX/.veltor-fonts" ]; then
    key='HKCU\Software\Wine\Fonts\Replacements'
    "$wine_run" reg add "$key" /v "Segoe UI" /t REG_SZ /d "Liberation Sans" /f >/dev/null 2>&1
    "$wine_run" reg add "$key" /v "Cascadia Mono" /t REG_SZ /d "Liberation Mono" /f >/dev/null 2>&1
    touch "$WINEPREFIX/.veltor-fonts"
  fi
) 9>"$build_dir/.winefonts.lock"
if [ "$exe" = --prepare ]; then exit 0; fi

if [ -n "${DISPLAY:-}" ]; then
  exec "$wine_run" "$@"
fi
# A Wine server left over from a program run without a display keeps a desktop that can make no window:
# let it end (or end it) so this program's server starts with the new display.
if [ -d "$WINEPREFIX" ]; then
  WINEPREFIX="$WINEPREFIX" timeout 20 wineserver -w 2>/dev/null || WINEPREFIX="$WINEPREFIX" wineserver -k 2>/dev/null || true
fi
exec xvfb-run -a -s "-screen 0 1920x1080x24 -nolisten tcp" "$wine_run" "$@"
