#!/usr/bin/env bash
# Builds and starts the demo application. Without a display it runs the demo on a private Xvfb
# server, walks every page, saves one screenshot per page and says where they are.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

"$root/scripts/deps.sh"
export CCACHE_BASEDIR="$root"
cmake -S "$root" -B "$root/build/plain" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
# After a checkout that adds headers, moc must look at the sources again.
find "$root/build/plain" -path '*_autogen/timestamp' -delete 2>/dev/null || true
cmake --build "$root/build/plain" -j "$(nproc)" --target mattoni_demo

demo="$root/build/plain/demo/mattoni_demo"
if [ -n "${DISPLAY:-}" ] && xset q >/dev/null 2>&1; then
    exec "$demo" "$@"
fi
shots="$root/screenshots"
mkdir -p "$shots"
QT_QPA_PLATFORM=xcb "$root/cmake/run-on-xvfb.sh" "$demo" --screenshots "$shots" "$@"
echo "No display: the demo ran under Xvfb; one screenshot per page is in $shots"
