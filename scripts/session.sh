# Sourced by scripts/run and scripts/soak: what a session of the program under Wine needs whatever the
# caller's environment holds. A display of its own (Xvfb picks a free number itself, so two sessions never
# race for one), a Wine prefix of its own (an inherited WINEPREFIX or DISPLAY is neither used nor ended),
# steps that say which one failed, and a cleanup that ends only what this session started, by its own id.
#   session_init NAME BUILD_DIR PREFIX_DIR   names the session in messages; sets the build tree and prefix
#   session_display                         starts the private Xvfb and exports DISPLAY
#   step DESCRIPTION COMMAND...              runs COMMAND; when it fails, says which step and exits 1
#   session_fail REASON                      says why the session ends, keeps the first reason in the file
#                                            that session_failure_file names (if any), and exits 1
#   session_started PID                      a process for the cleanup to end
#   session_cleanup                          ends the started processes, the prefix's server and the Xvfb
#   windows_path PATH                        the path as Windows programs in the prefix see it (drive Z:)

session_name=""
session_failure_file=""
session_pids=()
session_xvfb_pid=""
session_display_file=""

session_init() {
  session_name="$1"
  export VELTOR_BUILD_DIR="$2"
  export VELTOR_WINEPREFIX="$3"
  # The prefix's own server is the one that wineserver -k and -w talk to below.
  export WINEPREFIX="$3"
  unset WINESERVER
  # An interrupted session still ends what it started: the EXIT trap runs.
  trap 'exit 1' INT TERM
}

session_fail() {
  echo "$session_name: $1" >&2
  if [ -n "$session_failure_file" ] && [ ! -s "$session_failure_file" ]; then echo "$1" >"$session_failure_file"; fi
  exit 1
}

step() {
  local description="$1"
  shift
  local code=0
  "$@" || code=$?
  if [ "$code" -ne 0 ]; then session_fail "step failed: $description (exit $code)"; fi
}

session_started() { session_pids+=("$1"); }

# Xvfb writes the number it took to the descriptor once it accepts connections: that is the wait.
session_display() {
  session_display_file="$(mktemp)"
  Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp 3>"$session_display_file" >/dev/null 2>&1 &
  session_xvfb_pid=$!
  local number=""
  for _ in $(seq 300); do
    number="$(tr -dc 0-9 <"$session_display_file")"
    if [ -n "$number" ] || ! kill -0 "$session_xvfb_pid" 2>/dev/null; then break; fi
    sleep 0.1
  done
  if [ -z "$number" ]; then session_fail "step failed: starting a private Xvfb display"; fi
  export DISPLAY=":$number"
}

session_cleanup() {
  local pid
  for pid in "${session_pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wineserver -k 2>/dev/null || true
  if [ -n "$session_xvfb_pid" ]; then kill "$session_xvfb_pid" 2>/dev/null || true; fi
  if [ -n "$session_display_file" ]; then rm -f "$session_display_file"; fi
}

windows_path() {
  local p="$1"
  echo "Z:${p//\//\\}"
}
