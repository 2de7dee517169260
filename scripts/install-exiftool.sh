#!/usr/bin/env bash
# Places ExifTool as the app's own resource: third_party/exiftool/{exiftool,lib}.
# Debian's exiftool is too old to read the telemetry of recent aircraft.
set -euo pipefail

version=13.59
here=$(cd "$(dirname "$0")/.." && pwd)
dest="$here/third_party/exiftool"

if [ -x "$dest/exiftool" ] && [ "$(cat "$dest/VERSION" 2>/dev/null)" = "$version" ]; then
  exit 0
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
(cd "$work" && npm pack --silent "exiftool-vendored.pl@$version" >/dev/null)
tar -xzf "$work"/exiftool-vendored.pl-*.tgz -C "$work"
src="$work/package/bin"
rm -rf "$dest.tmp"
mkdir -p "$dest.tmp"
cp "$src/exiftool" "$dest.tmp/exiftool"
cp -r "$src/lib" "$dest.tmp/lib"
chmod +x "$dest.tmp/exiftool"
echo "$version" > "$dest.tmp/VERSION"
rm -rf "$dest"
mv "$dest.tmp" "$dest"
echo "ExifTool $version placed in $dest"
