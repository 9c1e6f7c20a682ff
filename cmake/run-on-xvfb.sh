#!/usr/bin/env bash
# Runs one program on a private Xvfb display and returns its exit code.
# Each GUI test gets its own X server so that parallel tests never share focus or clipboard.
set -u
if [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    XDG_RUNTIME_DIR=$(mktemp -d)
    export XDG_RUNTIME_DIR
    trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
fi
dispfile=$(mktemp)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$dispfile" >/dev/null 2>&1 &
xpid=$!
for _ in $(seq 1 200); do
    [ -s "$dispfile" ] && break
    sleep 0.05
done
disp=$(tr -d '\n' <"$dispfile")
rm -f "$dispfile"
if [ -z "$disp" ]; then
    echo "run-on-xvfb: Xvfb did not start" >&2
    kill "$xpid" 2>/dev/null
    exit 1
fi
DISPLAY=":$disp" "$@"
rc=$?
kill "$xpid" 2>/dev/null
wait "$xpid" 2>/dev/null
exit $rc
