#!/usr/bin/env bash
# Starts the desktop app from the build tree.
set -euo pipefail
build=${1:-build}
exec "$build/src/ui/aeroloom"
