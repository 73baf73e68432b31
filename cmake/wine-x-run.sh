#!/usr/bin/env bash
# Runs a Windows program under Wine with an X display, starting a private Xvfb when there is none:
# Wine makes windows, and so hears broadcasts, only with a display driver.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
if [ -n "${DISPLAY:-}" ]; then
  exec "$here/wine-run.sh" "$@"
fi
exec xvfb-run -a "$here/wine-run.sh" "$@"
