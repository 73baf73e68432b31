#!/usr/bin/env bash
# Starts and stops the update tests' HTTPS server (feed_server.py) with its test CA trusted for the run.
#   update-server.sh start STATE_DIR [OWNER_PID]   serves STATE_DIR/feed; the server ends by itself, and
#                                                  the CA is untrusted, once OWNER_PID (default: the caller) ends
#   update-server.sh stop STATE_DIR
# STATE_DIR holds the certificates, server.pid, requests.log and server.log; a test may write
# STATE_DIR/switch ("untrusted" or "down", see feed_server.py) to change how the server greets clients.
# Start first clears what an earlier run that died may have left: its server, a trusted test CA, a test
# server still on port 443.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
action="${1:-}"
state="${2:-}"
if [ -z "$state" ] || { [ "$action" != start ] && [ "$action" != stop ]; }; then
  echo "usage: $0 start STATE_DIR [OWNER_PID] | stop STATE_DIR" >&2
  exit 2
fi
mkdir -p "$state"
state="$(cd "$state" && pwd)"

is_feed_server() { { tr '\0' ' ' <"/proc/$1/cmdline"; } 2>/dev/null | grep -q "feed_server.py"; }

# wait_gone PID TENTHS: true once PID has ended, false when the deadline passed first.
wait_gone() {
  for _ in $(seq 1 "$2"); do
    kill -0 "$1" 2>/dev/null || return 0
    sleep 0.1
  done
  return 1
}

end_server() {
  kill "$1" 2>/dev/null || true
  wait_gone "$1" 100 || kill -9 "$1" 2>/dev/null || true
}

stop() {
  if [ -f "$state/server.pid" ]; then
    pid="$(cat "$state/server.pid")"
    if is_feed_server "$pid"; then end_server "$pid"; fi
    rm -f "$state/server.pid"
  fi
  # The guard untrusts the CA once the server has gone: let it finish rather than race it.
  if [ -f "$state/guard.pid" ]; then
    wait_gone "$(cat "$state/guard.pid")" 600 || true
    rm -f "$state/guard.pid"
  fi
  # A test server of another build tree that died with its owner's trap unrun.
  for pid in $(ss -Hltnp 'sport = :443' 2>/dev/null | grep -o 'pid=[0-9]*' | cut -d= -f2 | sort -u); do
    if is_feed_server "$pid"; then end_server "$pid"; fi
  done
  "$here/test-ca.sh" untrust
}

start() {
  local owner="$1"
  stop
  if ss -Hltn 'sport = :443' | grep -q .; then
    echo "Port 443 is taken by another program: $(ss -Hltnp 'sport = :443')" >&2
    exit 1
  fi
  rm -rf "$state/certs" "$state/ready" "$state/switch"
  mkdir -p "$state/feed"
  : >"$state/requests.log"
  "$here/test-ca.sh" make "$state/certs"
  "$here/test-ca.sh" trust "$state/certs"
  # Its own session, so a Ctrl-C at the terminal does not skip the clean-up; when the server has ended,
  # for whatever reason, the CA goes too.
  setsid bash -c '"$1" --feed "$2/feed" --certs "$2/certs" --log "$2/requests.log" --ready "$2/ready" \
                    --switch "$2/switch" \
                    --owner "$3" >"$2/server.log" 2>&1; "$4" untrust' \
    _ "$here/feed_server.py" "$state" "$owner" "$here/test-ca.sh" </dev/null >/dev/null 2>&1 &
  echo $! >"$state/guard.pid"
  for _ in $(seq 1 300); do
    if [ -s "$state/ready" ]; then
      cat "$state/ready" >"$state/server.pid"
      echo "Update test server on 127.0.0.1:443 and 127.0.0.2:443, feed $state/feed"
      return 0
    fi
    sleep 0.1
  done
  echo "The update test server did not start:" >&2
  cat "$state/server.log" >&2 || true
  stop
  exit 1
}

case "$action" in
  start) start "${3:-$PPID}" ;;
  stop) stop ;;
esac
