#!/usr/bin/env bash
# Runs a Windows program under Wine with a prefix private to the build tree, or the one that VELTOR_WINEPREFIX
# names (scripts/run and scripts/soak keep their own). A WINEPREFIX inherited from the caller is never used:
# its server is someone else's, not ours to share or end. The first start of a new prefix (wineboot) is
# serialised with a lock so parallel tests don't race to create it.
set -euo pipefail
exe="$1"; shift
build_dir="${VELTOR_BUILD_DIR:-}"
if [ -z "$build_dir" ]; then
  build_dir="$(cd "$(dirname "$exe")" && pwd)"
  while [ "$build_dir" != "/" ] && [ ! -f "$build_dir/CMakeCache.txt" ]; do build_dir="$(dirname "$build_dir")"; done
  [ -f "$build_dir/CMakeCache.txt" ] || build_dir="$(cd "$(dirname "$exe")" && pwd)"
fi
export WINEPREFIX="${VELTOR_WINEPREFIX:-$build_dir/wineprefix}"
export WINEDEBUG="${WINEDEBUG:--all}"
export WINEARCH=win64
(
  flock 9
  if [ ! -f "$WINEPREFIX/system.reg" ]; then
    mkdir -p "$WINEPREFIX"
    WINEDLLOVERRIDES="mscoree,mshtml=" wineboot -i >/dev/null 2>&1 || true
    wineserver -w || true
  fi
) 9>"$build_dir/.wineprefix.lock"
exec wine "$exe" "$@"
