#!/usr/bin/env bash
# Ingest of a synthetic card of 8 flights (4 .LRF with embedded telemetry, 4 .MP4 + .SRT) into a
# local library, against the tool-bound limit measured in the same run: the same ffmpeg, ffprobe
# and exiftool commands run directly, two flights at a time, plus the upload alone (curl).
# Then the client's peak memory while it uploads a 2 GB proxy.
#   bash bench/ingest/ingest_bench.sh [build] [seconds per clip] [proxy bytes]
# Run by hand, never by `make test`.
set -euo pipefail

build=$(cd "${1:-build}" && pwd)
seconds=${2:-10}
proxy_bytes=${3:-1999000000}
here=$(cd "$(dirname "$0")/../.." && pwd)
cli="$build/src/cli/aeroloom-cli"
server="$build/src/server/aeroloom-server"
fixture="$build/tests/fixtures/aeroloom-fixture"
exiftool="$here/third_party/exiftool"
work=$(mktemp -d)
# Every server started here is stopped on the way out, whether the run ends well or not. They
# are remembered by id: one started inside $( ) would not be among this shell's jobs.
server_pids=()
stop_servers() {
  for pid in "${server_pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${server_pids[@]}"; do wait "$pid" 2>/dev/null || true; done
  server_pids=()
}
trap 'stop_servers; rm -rf "$work"' EXIT
now() { date +%s.%N; }

echo "Making the card: 8 flights of ${seconds} s..."
media="$work/card/DCIM/100MEDIA"
mkdir -p "$media"
samples=$((seconds * 10))
for i in 1 2 3 4; do
  "$fixture" clip "$media/DJI_2024010203040${i}_000${i}_D.LRF" --seconds "$seconds" --size 1280x720 --telemetry "$samples" >/dev/null
  "$fixture" clip "$media/DJI_2024010204040${i}_001${i}_D.MP4" --seconds "$seconds" --size 1920x1080 >/dev/null
  "$fixture" srt "$media/DJI_2024010204040${i}_001${i}_D.SRT" --samples "$samples" >/dev/null
done

start_server() {  # $1 library folder; sets $base to the server's address
  "$server" --library "$1" --listen 127.0.0.1:0 --no-samples >"$1.out" 2>"$1.log" &
  server_pids+=("$!")
  for _ in $(seq 1 200); do
    base=$(grep -o 'http://127\.0\.0\.1:[0-9]*' "$1.out" || true)
    [ -n "$base" ] && return
    sleep 0.05
  done
  echo "server did not start" >&2; exit 1
}

# 1. The program: aeroloom-cli ingest, processing and upload overlapped.
start_server "$work/lib1"
t0=$(now)
"$cli" ingest "$work/card" --server "$base" --no-geocode --work "$work/app" >/dev/null 2>"$work/ingest.err" || { cat "$work/ingest.err"; exit 1; }
t_ingest=$(echo "$(now) - $t0" | bc)

# 2. The tools alone, two flights at a time, with the commands the pipeline runs.
process_one() {
  clip=$1; out=$2; mkdir -p "$out"
  case "$clip" in
    *.LRF)
      perl -I "$exiftool/lib" "$exiftool/exiftool" -ee3 -G3 -api RequestAll=3 -j "$clip" >/dev/null
      ffmpeg -v error -y -i "$clip" -map 0:0 -c:v copy -an -movflags +faststart "$out/proxy.mp4" ;;
    *)
      ffprobe -v error -show_entries format=duration:format_tags -of json "$clip" >/dev/null
      ffmpeg -v error -y -i "$clip" -map 0:v:0 -vf 'scale=if(gt(iw\,ih)\,-2\,720):if(gt(iw\,ih)\,720\,-2)' \
        -c:v libx264 -preset veryfast -b:v 4M -an -movflags +faststart "$out/proxy.mp4" ;;
  esac
  ffprobe -v error -select_streams v:0 -show_entries stream=width,height:stream_side_data=rotation -of csv=p=0 "$out/proxy.mp4" >/dev/null
  ffmpeg -v error -y -ss 2.0 -i "$out/proxy.mp4" -frames:v 1 -vf scale=480:-1 "$out/thumb.jpg" || true
  cp "$work/app-flight.json" "$out/flight.json"
}
export -f process_one
export exiftool work
"$cli" telemetry "$(ls "$media"/*.MP4 | head -1)" --srt "$(ls "$media"/*.SRT | head -1)" >"$work/app-flight.json"
t0=$(now)
clips=$(ls "$media"/*.LRF; ls "$media"/*_001?_D.MP4)
printf '%s\n' $clips | xargs -P 2 -I{} bash -c 'process_one "$1" "$work/direct/$(basename "$1")"' _ {}
t_tools=$(echo "$(now) - $t0" | bc)

# 3. The upload alone: the same folders PUT and committed with curl, one flight at a time.
start_server "$work/lib2"
base2=$base
t0=$(now)
for dir in "$work"/direct/*; do
  id=$(basename "$dir" | tr '.' '_')
  for f in flight.json thumb.jpg proxy.mp4; do
    [ -f "$dir/$f" ] && curl -sf -o /dev/null -X PUT -H 'Content-Type: application/octet-stream' --data-binary "@$dir/$f" "$base2/api/flights/$id/files/$f"
  done
  curl -sf -o /dev/null -X POST "$base2/api/flights/$id/commit"
done
t_upload=$(echo "$(now) - $t0" | bc)

limit=$(echo "$t_tools + $t_upload / 8" | bc -l)   # processing bound, then the last flight's upload
echo
printf 'ingest (aeroloom-cli)        %7.2f s\n' "$t_ingest"
printf 'tools alone, two at a time   %7.2f s\n' "$t_tools"
printf 'upload alone (8 flights)     %7.2f s\n' "$t_upload"
printf 'tool-bound limit             %7.2f s   (tools + one flight'"'"'s upload)\n' "$limit"
printf 'ratio ingest / limit         %7.3f     (goal <= 1.10)\n' "$(echo "$t_ingest / $limit" | bc -l)"

# 4. Client memory while uploading a 2 GB proxy: a finished folder left in Pending is picked up.
pending="$work/big/Pending/20240102_050000_0099"
mkdir -p "$pending" "$work/empty"
cp "$work/app-flight.json" "$pending/flight.json"
head -c "$proxy_bytes" /dev/urandom >"$pending/proxy.mp4"
start_server "$work/lib3"
base3=$base
/usr/bin/time -v "$cli" ingest "$work/empty" --server "$base3" --no-geocode --work "$work/big" >/dev/null 2>"$work/big.time" || true
rss=$(grep 'Maximum resident set size' "$work/big.time" | awk '{print $6}')
baseline_rss=$( { /usr/bin/time -v "$cli" scan "$work/empty" >/dev/null; } 2>&1 | grep 'Maximum resident set size' | awk '{print $6}')
printf '\n%d MB proxy upload: client peak RSS %d MB (the CLI doing nothing: %d MB; goal < 64 MB)\n' \
  "$((proxy_bytes / 1000000))" "$((rss / 1024))" "$((baseline_rss / 1024))"
