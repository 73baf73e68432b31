#!/usr/bin/env bash
# Runs a Windows program under Wine with an X display, starting a private Xvfb when there is none:
# Wine makes windows, and so hears broadcasts, only with a display driver.
exec "$(cd "$(dirname "$0")" && pwd)/../scripts/wine-gui.sh" "$@"
