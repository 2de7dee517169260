#!/usr/bin/env bash
# Installs what Aeroloom needs to build, run and test on Debian 12. Safe to run again:
# it only asks apt for packages that are missing, and only fetches ExifTool when the
# bundled copy is absent or of another version.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)

packages=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev qt6-base-dev-tools qt6-declarative-dev qt6-declarative-dev-tools
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
  qml6-module-qtquick-window qml6-module-qtquick-templates qml6-module-qtquick-dialogs
  qml6-module-qtqml-workerscript qml6-module-qtqml qml6-module-qtquick-shapes
  qml6-module-qt-labs-platform qml6-module-qtcore
  libqt6opengl6-dev libgl-dev libegl-dev
  qcoro-qt6-dev qtkeychain-qt6-dev libmpv-dev nlohmann-json3-dev
  libcpp-httplib-dev libsqlite3-dev libssl-dev
  libgtest-dev libgmock-dev
  ffmpeg perl
  qt6-webengine-dev qml6-module-qtwebengine qml6-module-qtwebchannel
  libaubio-dev aubio-tools
  chromium ccache
  xvfb xauth dbus dbus-x11 gnome-keyring libsecret-tools
  fonts-dejavu-core shared-mime-info
  # The symbols and the full-width plus of the program's words ("✨ Auto-story", "＋ New story", ⏮ ⏭).
  fonts-symbola fonts-wqy-microhei
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

# npm fetches ExifTool and the web packages; a machine that already has node with its own npm keeps it.
command -v npm >/dev/null 2>&1 || missing+=(nodejs npm)

if [ ${#missing[@]} -gt 0 ]; then
  sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  echo "Installing: ${missing[*]}"
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

"$here/scripts/install-exiftool.sh"
"$here/scripts/install-web.sh"
