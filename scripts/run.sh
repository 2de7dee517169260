#!/usr/bin/env bash
# Starts the desktop app signed in to a library of its own on this machine: aeroloom-server runs
# in the background on a free loopback port with the library under the user's data folder (sample
# flights and music are made the first time), and is stopped when the app exits.
#   AEROLOOM_LIBRARY   another library folder
set -euo pipefail

build=${1:-build}
server="$build/src/server/aeroloom-server"
app="$build/src/ui/aeroloom"
data="${XDG_DATA_HOME:-$HOME/.local/share}/Aeroloom"
library="${AEROLOOM_LIBRARY:-$data/Library}"
mkdir -p "$data"
log="$data/server.log"
ready=$(mktemp)

"$server" --library "$library" --listen 127.0.0.1:0 >"$ready" 2>>"$log" &
server_pid=$!
stop_server() {
  kill "$server_pid" 2>/dev/null || true
  wait "$server_pid" 2>/dev/null || true
  rm -f "$ready"
}
trap stop_server EXIT

# The server prints its address once it listens; a new library takes a few seconds for its samples.
base=""
for _ in $(seq 1 1200); do
  base=$(grep -o 'http://127\.0\.0\.1:[0-9]*' "$ready" || true)
  [ -n "$base" ] && break
  if ! kill -0 "$server_pid" 2>/dev/null; then
    echo "The library server did not start:" >&2
    tail -n 5 "$log" >&2
    exit 1
  fi
  sleep 0.1
done
if [ -z "$base" ]; then
  echo "The library server did not answer in time; see $log" >&2
  exit 1
fi
if command -v curl >/dev/null 2>&1; then
  curl -sf -o /dev/null "$base/api/me" || { echo "The library server at $base does not answer; see $log" >&2; exit 1; }
fi

echo "Library $library served at $base (log: $log)"
SPIKE_BASE="$base" "$app"
