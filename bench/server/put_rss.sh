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
trap 'rm -rf "$work"' EXIT

# Runs the server under /usr/bin/time -v, does "$@" against it, stops it; prints peak RSS in kB.
measure() {
  local name=$1; shift
  /usr/bin/time -v -o "$work/$name.time" "$server" --library "$work/$name" --no-samples \
    --listen 127.0.0.1:0 >"$work/$name.out" 2>/dev/null &
  local pid=$!
  local base=""
  for _ in $(seq 1 300); do
    base=$(grep -o 'http://127\.0\.0\.1:[0-9]*' "$work/$name.out" || true)
    [ -n "$base" ] && break
    sleep 0.1
  done
  "$@" "$base"
  # time(1) passes the signal on to the server, which stops cleanly.
  pkill -TERM -P "$pid" 2>/dev/null || true
  wait "$pid" || true
  grep 'Maximum resident set size' "$work/$name.time" | awk '{print $NF}'
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

idle=$(measure idle small)
busy=$(measure busy large)
echo "peak RSS, idle server with one request: $((idle / 1024)) MB"
echo "peak RSS, server taking a $((size / 1000000)) MB PUT and serving it back: $((busy / 1024)) MB"
echo "ratio: $(echo "scale=2; $busy / $idle" | bc)"
if [ "$busy" -lt $((64 * 1024)) ]; then echo "under 64 MB: yes"; else echo "under 64 MB: NO"; exit 1; fi
