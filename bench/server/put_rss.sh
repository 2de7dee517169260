#!/usr/bin/env bash
# Peak memory of aeroloom-server while it takes one large PUT (default 2 GB), commits it and
# serves it back, against the baseline of the same server started and asked one small request,
# in this same run.
#   bash bench/server/put_rss.sh [build] [bytes]
set -euo pipefail
build=${1:-build}
size=${2:-2000000000}
server="$build/src/server/aeroloom-server"
work=$(mktemp -d)
# The server runs under time(1); stopping it means signalling time's child, the server itself.
# This happens on the way out too, so a failed request leaves no server behind.
time_pid=""
stop_server() {
  [ -n "$time_pid" ] || return 0
  pkill -TERM -P "$time_pid" 2>/dev/null || true
  wait "$time_pid" 2>/dev/null || true
  time_pid=""
}
trap 'stop_server; rm -rf "$work"' EXIT

# Runs the server under /usr/bin/time -v, does "$@" against it, stops it; sets $rss to its peak
# RSS in kB. Not run inside $( ): the server must stay this shell's to stop.
measure() {
  local name=$1; shift
  /usr/bin/time -v -o "$work/$name.time" "$server" --library "$work/$name" --no-samples \
    --listen 127.0.0.1:0 >"$work/$name.out" 2>/dev/null &
  time_pid=$!
  local base=""
  for _ in $(seq 1 300); do
    base=$(grep -o 'http://127\.0\.0\.1:[0-9]*' "$work/$name.out" || true)
    [ -n "$base" ] && break
    sleep 0.1
  done
  [ -n "$base" ] || { echo "the server did not start" >&2; exit 1; }
  "$@" "$base"
  stop_server
  rss=$(grep 'Maximum resident set size' "$work/$name.time" | awk '{print $NF}')
}

small() { curl -sf -o /dev/null "$1/api/flights"; }
large() {
  truncate -s "$size" "$work/body"
  local start end
  start=$(date +%s.%N)
  curl -sf -o "$work/put.reply" -T "$work/body" -H 'Content-Type: application/octet-stream' \
    "$1/api/flights/20240102_030405_0007/files/proxy.mp4"
  end=$(date +%s.%N)
  echo "PUT of $size bytes took $(echo "$end - $start" | bc) s: $(cat "$work/put.reply")" >&2
  rm -f "$work/body"
  # Then commit it and read it back whole, so the same peak covers serving the file too.
  printf '%s' '{"meta":{"model":"DJI","duration":1,"samples":0,"bounds":null,"centroid":null,"relAlt":null,'\
'"maxSpeed":0,"pathLength":0,"source":"DJI_0007.MP4"},"track":[]}' >"$work/flight.json"
  curl -sf -o /dev/null -T "$work/flight.json" "$1/api/flights/20240102_030405_0007/files/flight.json"
  curl -sf -o /dev/null -X POST "$1/api/flights/20240102_030405_0007/commit"
  start=$(date +%s.%N)
  got=$(curl -sf -o /dev/null -w '%{size_download}' "$1/flights/20240102_030405_0007/proxy.mp4")
  end=$(date +%s.%N)
  echo "GET of the committed proxy ($got bytes) took $(echo "$end - $start" | bc) s" >&2
}

measure idle small
idle=$rss
measure busy large
busy=$rss
echo "peak RSS, idle server with one request: $((idle / 1024)) MB"
echo "peak RSS, server taking a $((size / 1000000)) MB PUT and serving it back: $((busy / 1024)) MB"
echo "ratio: $(echo "scale=2; $busy / $idle" | bc)"
if [ "$busy" -lt $((64 * 1024)) ]; then echo "under 64 MB: yes"; else echo "under 64 MB: NO"; exit 1; fi
