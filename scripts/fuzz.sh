#!/usr/bin/env bash
# Builds the libFuzzer harnesses (CMake preset "fuzz": clang 14, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs each for SECONDS, one after another. Never part of make test.
#   bash scripts/fuzz.sh [SECONDS] [HARNESS...]      default: 60 s each, every harness
# Harnesses: srt exiftool_json flight_file client_records server_requests.
# Seeds are made into build-fuzz/seeds from ../shared/realdata, the fixture generator, a real
# library server and the app's requests; the corpus grows in build-fuzz/corpus; an input that
# crashes or breaks a promise is kept in build-fuzz/findings/<harness>/. A line per harness tells
# its executions and findings.
set -euo pipefail

seconds=${1:-60}
shift || true
here=$(cd "$(dirname "$0")/.." && pwd)
build="$here/build-fuzz"
realdata=${AEROLOOM_REALDATA:-$here/../shared/realdata}
[ -d "$realdata" ] || realdata=/work/shared/realdata
harnesses=("$@")
[ ${#harnesses[@]} -gt 0 ] || harnesses=(srt exiftool_json flight_file client_records server_requests)

cd "$here"
cmake --preset fuzz >/dev/null
cmake --build "$build" -j2
if [ ! -d "$build/seeds" ]; then
  echo "Making seeds from $realdata..."
  "$build/fuzz/fuzz_seeds" "$build/seeds" "$realdata"
fi

summary=()
status=0
for harness in "${harnesses[@]}"; do
  corpus="$build/corpus/$harness"
  findings="$build/findings/$harness"
  log="$build/logs/$harness.log"
  mkdir -p "$corpus" "$findings" "$(dirname "$log")"
  echo "fuzz_$harness for $seconds s..."
  set +e
  "$build/fuzz/fuzz_$harness" "$corpus" "$build/seeds/$harness" \
    -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -max_len=65536 \
    -print_final_stats=1 -artifact_prefix="$findings/" >"$log" 2>&1
  code=$?
  set -e
  execs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo 0)
  found=$(find "$findings" -type f | wc -l)
  cov=$(grep -o 'cov: [0-9]*' "$log" | tail -1 | grep -o '[0-9]*' || echo 0)
  summary+=("$(printf '%-16s %10s execs  %5s edges  %s findings (exit %s)' "$harness" "$execs" "$cov" "$found" "$code")")
  if [ "$code" -ne 0 ] || [ "$found" -ne 0 ]; then
    status=1
    grep -m1 -A12 -E '^==[0-9]+==ERROR|broken promise|runtime error|deadly signal' "$log" || true
  fi
done
echo
printf '%s\n' "${summary[@]}"
exit "$status"
