#!/usr/bin/env bash
# Places the web packages the project builds with into third_party/web/node_modules:
#   three          the 3D library of the server's theater page (served from the server's own
#                  resources: the pages never reach a CDN)
#   playwright-core drives Debian's Chromium in the tests of the server's web pages
# Safe to run again: it only asks npm when the pinned versions are not already in place.
set -euo pipefail

packages=(three@0.170.0 playwright-core@1.64.1)
here=$(cd "$(dirname "$0")/.." && pwd)
dest="$here/third_party/web"
stamp="${packages[*]}"

if [ -d "$dest/node_modules" ] && [ "$(cat "$dest/VERSION" 2>/dev/null)" = "$stamp" ]; then
  exit 0
fi

rm -rf "$dest.tmp"
mkdir -p "$dest.tmp"
(cd "$dest.tmp" && echo '{"private":true}' > package.json &&
  npm install --no-audit --no-fund --no-save --silent "${packages[@]}" 2>&1 | grep -v 'nodedir' || true)
[ -f "$dest.tmp/node_modules/three/build/three.module.min.js" ] || { echo "npm could not install ${packages[*]}" >&2; exit 1; }
echo "$stamp" > "$dest.tmp/VERSION"
rm -rf "$dest"
mv "$dest.tmp" "$dest"
echo "Web packages placed in $dest: $stamp"
