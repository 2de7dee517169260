#!/usr/bin/env bash
# Runs every test through CTest inside what the tests need: a private D-Bus session with an
# unlocked Secret Service (for credentials), a virtual display (for OpenGL and rendering) and
# a throwaway HOME, so nothing of the user's own settings or keyring is touched.
set -euo pipefail

build=${1:-build}
build=$(cd "$build" && pwd)
shift || true

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME="$home"
export XDG_CONFIG_HOME="$home/.config" XDG_DATA_HOME="$home/.local/share" XDG_CACHE_HOME="$home/.cache"
export XDG_RUNTIME_DIR="$home/run"
mkdir -p "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
export QTWEBENGINE_DISABLE_SANDBOX=1

# On a sanitizer build (cmake --preset asan) the leak check leaves out what lsan.supp names:
# blocks the libraries under us keep to the end. Ours are still reported.
if grep -q '^AEROLOOM_SANITIZE:BOOL=ON' "$build/CMakeCache.txt" 2>/dev/null; then
  source_dir=$(cd "$(dirname "$0")/.." && pwd)
  export LSAN_OPTIONS="suppressions=$source_dir/tests/support/lsan.supp:print_suppressions=0${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
fi

inner=$(cat <<'INNER'
set -e
# The keyring must be unlocked with a newline on stdin; an empty stdin leaves it locked.
echo "" | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1 || true
cd "$AEROLOOM_CTEST_DIR"
ctest --output-on-failure --no-tests=error -j "$(nproc)" "$@"
INNER
)
export AEROLOOM_CTEST_DIR="$build"
exec xvfb-run -a -s "-screen 0 1920x1080x24" dbus-run-session -- bash -c "$inner" ctest "$@"
