#!/usr/bin/env bash
# Builds and runs every test: once as a plain build, once under AddressSanitizer and
# UndefinedBehaviorSanitizer with leak detection (any report fails the run), with throw-away
# database servers for the server tests (scripts/db-servers.sh).
#   scripts/test.sh            both builds
#   scripts/test.sh --plain    the plain build only
#   scripts/test.sh --asan     the sanitizer build only
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

mode=${1:-all}
"$root/scripts/deps.sh"

# The server tests want MariaDB, Firebird and PostgreSQL: unless the caller already runs them, or
# says MATTONI_DB_SERVERS=none, the suites run inside throw-away servers that stop at the end.
if [ -z "${MATTONI_DB_SERVERS_DIR:-}" ] && [ "${MATTONI_DB_SERVERS:-}" != none ]; then
    exec "$root/scripts/db-servers.sh" run "$root/scripts/test.sh" "$@"
fi

jobs=$(nproc)
export CCACHE_BASEDIR="$root"

run_suite() {
    local name=$1
    shift
    local dir="$root/build/$name"
    echo "== $name: configure and build"
    cmake -S "$root" -B "$dir" -G Ninja "$@" >/dev/null
    # After a checkout that adds headers, moc must look at the sources again.
    find "$dir" -path '*_autogen/timestamp' -delete 2>/dev/null || true
    cmake --build "$dir" -j "$jobs"
    echo "== $name: tests"
    (cd "$dir" && ctest -j "$jobs" --output-on-failure --timeout 600)
}

case "$mode" in
    all|--all)
        run_suite plain -DCMAKE_BUILD_TYPE=RelWithDebInfo
        run_suite asan -DCMAKE_BUILD_TYPE=Debug -DMATTONI_SANITIZE=ON -DMATTONI_BUILD_BENCH=OFF -DMATTONI_BUILD_DEMO=OFF
        ;;
    --plain) run_suite plain -DCMAKE_BUILD_TYPE=RelWithDebInfo ;;
    --asan) run_suite asan -DCMAKE_BUILD_TYPE=Debug -DMATTONI_SANITIZE=ON -DMATTONI_BUILD_BENCH=OFF -DMATTONI_BUILD_DEMO=OFF ;;
    *) echo "usage: $0 [--plain|--asan]" >&2; exit 2 ;;
esac
echo "All tests passed."
