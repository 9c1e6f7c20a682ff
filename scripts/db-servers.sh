#!/usr/bin/env bash
# Throw-away database servers for the tests: MariaDB, Firebird 3 and PostgreSQL, each listening on
# loopback only, on a free port, with its data in one temporary folder that "stop" deletes.
#
#   scripts/db-servers.sh start [DIR]   installs what is missing, starts the servers, creates a test
#                                       database and user on each and prints the settings as
#                                       "export MATTONI_TEST_...=..." lines (eval them)
#   scripts/db-servers.sh env [DIR]     prints those lines again
#   scripts/db-servers.sh stop [DIR]    stops the servers and deletes the folder
#   scripts/db-servers.sh run CMD...    start, run CMD with the settings, stop even when CMD fails;
#                                       exits with CMD's status
#
# DIR defaults to $MATTONI_DB_SERVERS_DIR (set by the printed lines), or a new temporary folder for
# "start". MATTONI_DB_SERVERS="mysql firebird psql" chooses the servers (all three by default).
# Each setting reads "host=127.0.0.1;port=N;user=U;password=P;db=NAME" (for Firebird, db is the
# database file on the server).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

servers=${MATTONI_DB_SERVERS:-mysql firebird psql}
user=mattoni
password=mattoni
database=mattoni_test
mysql_base=33306
firebird_base=33050
psql_base=35432

log() { echo "db-servers: $*" >&2; }

# True when something accepts connections on the loopback port.
listening() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }

free_port() {
    local p=$1
    while listening "$p"; do p=$((p + 1)); done
    echo "$p"
}

# Waits up to 30 s for a condition (a command) to hold.
wait_for() {
    local i
    for ((i = 0; i < 300; i++)); do
        "$@" && return 0
        sleep 0.1
    done
    return 1
}

install_missing() {
    local pkgs=()
    for s in $servers; do
        case $s in
            # The -core packages hold the server and client programs without a system service.
            mysql) pkgs+=(mariadb-server-core mariadb-client-core libqt6sql6-mysql) ;;
            firebird) pkgs+=(firebird3.0-server firebird3.0-utils libqt6sql6-ibase) ;;
            psql) pkgs+=(postgresql libqt6sql6-psql) ;;
            *) log "unknown server '$s'"; exit 2 ;;
        esac
    done
    "$root/scripts/deps.sh" "${pkgs[@]}" >&2
}

setting() { echo "host=127.0.0.1;port=$1;user=$user;password=$password;db=$2"; }

start_mysql() {
    local d=$dir/mysql port
    port=$(free_port "$mysql_base")
    mkdir -p "$d"
    mariadb-install-db --no-defaults --datadir="$d/data" --user="$(id -un)" --skip-test-db \
        --auth-root-authentication-method=socket >"$d/install.log" 2>&1 \
        || { cat "$d/install.log" >&2; return 1; }
    cat >"$d/init.sql" <<EOF
CREATE DATABASE IF NOT EXISTS $database CHARACTER SET utf8mb4;
CREATE USER IF NOT EXISTS '$user'@'127.0.0.1' IDENTIFIED BY '$password';
GRANT ALL ON $database.* TO '$user'@'127.0.0.1';
EOF
    # The server's default sql_mode is kept: the tests set NO_BACKSLASH_ESCAPES per connection,
    # as an application must.
    mariadbd --no-defaults --datadir="$d/data" --user="$(id -un)" --bind-address=127.0.0.1 \
        --port="$port" --socket="$d/mysqld.sock" --pid-file="$d/mysqld.pid" --log-error="$d/error.log" \
        --init-file="$d/init.sql" --character-set-server=utf8mb4 --collation-server=utf8mb4_unicode_ci \
        --skip-name-resolve --skip-log-bin --innodb-buffer-pool-size=32M --innodb-log-file-size=16M \
        --innodb-flush-log-at-trx-commit=0 --innodb-doublewrite=0 --innodb-fast-shutdown=2 </dev/null >/dev/null 2>&1 &
    echo $! >"$d/server.pid"
    disown
    mysql_ready() {
        mariadb --no-defaults --protocol=tcp -h127.0.0.1 -P"$port" -u"$user" -p"$password" "$database" \
            -e 'SELECT 1' >/dev/null 2>&1
    }
    wait_for mysql_ready || { tail -20 "$d/error.log" >&2; return 1; }
    echo "export MATTONI_TEST_MYSQL='$(setting "$port" "$database")'" >>"$dir/env"
}

start_firebird() {
    local d=$dir/firebird port
    port=$(free_port "$firebird_base")
    mkdir -p "$d/lock" "$d/tmp"
    # A root folder of our own: the server reads firebird.conf and its messages from $FIREBIRD and
    # keeps its users in a security database of this folder.
    cat >"$d/firebird.conf" <<EOF
RemoteServicePort = $port
RemoteBindAddress = 127.0.0.1
SecurityDatabase = $d/security3.fdb
ServerMode = Super
IpcName = mattoni_$port
DefaultDbCachePages = 256
EOF
    cp /etc/firebird/3.0/plugins.conf "$d/"
    : >"$d/databases.conf"
    local f
    for f in firebird.msg intl plugins; do ln -s "/usr/lib/x86_64-linux-gnu/firebird/3.0/$f" "$d/$f"; done
    export FIREBIRD=$d FIREBIRD_LOCK=$d/lock FIREBIRD_TMP=$d/tmp
    # Without a server, isql attaches through the embedded engine: it creates the security database,
    # the user and the test database directly in the folder.
    isql-fb -q >"$d/create.log" 2>&1 <<EOF || { cat "$d/create.log" >&2; return 1; }
CREATE DATABASE '$d/security3.fdb' USER SYSDBA;
CREATE USER $user PASSWORD '$password' USING PLUGIN Srp;
COMMIT;
CREATE DATABASE '$d/$database.fdb' USER $user DEFAULT CHARACTER SET UTF8;
EXIT;
EOF
    if grep -q . "$d/create.log"; then cat "$d/create.log" >&2; return 1; fi
    /usr/sbin/firebird </dev/null >"$d/server.log" 2>&1 &
    echo $! >"$d/server.pid"
    disown
    unset FIREBIRD FIREBIRD_LOCK FIREBIRD_TMP
    wait_for listening "$port" || { cat "$d/server.log" >&2; return 1; }
    echo "export MATTONI_TEST_FIREBIRD='$(setting "$port" "$d/$database.fdb")'" >>"$dir/env"
}

# PostgreSQL refuses to run as root: root runs it as the postgres account of the Debian package.
as_pg() {
    if [ "$(id -u)" -eq 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi
}

start_psql() {
    local d=$dir/psql port bin
    port=$(free_port "$psql_base")
    bin=$(ls -d /usr/lib/postgresql/*/bin | sort -V | tail -1)
    mkdir -p "$d"
    [ "$(id -u)" -eq 0 ] && chown postgres "$d"
    as_pg "$bin/initdb" -D "$d/data" -U postgres --auth=trust -E UTF8 --no-locale --no-sync \
        >"$d/initdb.log" 2>&1 || { cat "$d/initdb.log" >&2; return 1; }
    # trust on the socket (for set-up), passwords over TCP.
    sed -i -E 's/^(host .*)trust$/\1scram-sha-256/' "$d/data/pg_hba.conf"
    as_pg "$bin/pg_ctl" -D "$d/data" -l "$d/server.log" -w -s \
        -o "-p $port -k $d -c listen_addresses=127.0.0.1 -c fsync=off -c full_page_writes=off -c shared_buffers=16MB" \
        start >&2 || { cat "$d/server.log" >&2; return 1; }
    as_pg "$bin/psql" -q -h "$d" -p "$port" -U postgres -d postgres -v ON_ERROR_STOP=1 \
        -c "CREATE USER $user PASSWORD '$password'" -c "CREATE DATABASE $database OWNER $user" >&2
    echo "$bin" >"$d/bin"
    echo "export MATTONI_TEST_PSQL='$(setting "$port" "$database")'" >>"$dir/env"
}

# True when the process has ended (a zombie that nobody reaps has ended too).
ended() {
    local stat
    stat=$(cat "/proc/$1/stat" 2>/dev/null) || return 0
    # The state follows the parenthesised program name.
    [[ ${stat##*) } == Z* ]]
}

# After 5 s a server that has not ended, whose data is thrown away anyway, is killed.
stop_pid() {
    local i
    kill "$2" "$1" 2>/dev/null || return 0
    for ((i = 0; i < 50; i++)); do
        ended "$1" && return 0
        sleep 0.1
    done
    kill -9 "$1" 2>/dev/null || true
}

stop_all() {
    local d=$1
    [ -d "$d" ] || return 0
    if [ -f "$d/psql/bin" ] && [ -f "$d/psql/data/postmaster.pid" ]; then
        as_pg "$(cat "$d/psql/bin")/pg_ctl" -D "$d/psql/data" -m immediate -w -s stop >&2 || true
    fi
    local pidfile
    [ -f "$d/mysql/server.pid" ] && stop_pid "$(cat "$d/mysql/server.pid")" -TERM
    # Firebird ignores SIGTERM for many seconds while it waits on its own timers.
    [ -f "$d/firebird/server.pid" ] && stop_pid "$(cat "$d/firebird/server.pid")" -KILL
    rm -rf "$d"
}

start_all() {
    install_missing
    dir=${1:-$(mktemp -d "${TMPDIR:-/tmp}/mattoni-db.XXXXXX")}
    mkdir -p "$dir"
    # The postgres account must reach its folder inside.
    chmod 755 "$dir"
    echo "export MATTONI_DB_SERVERS_DIR='$dir'" >"$dir/env"
    local s
    for s in $servers; do
        log "starting $s"
        if ! "start_$s"; then
            log "$s did not start"
            stop_all "$dir"
            exit 1
        fi
    done
}

cmd=${1:-}
[ $# -gt 0 ] && shift
case $cmd in
    start)
        start_all "${1:-}"
        cat "$dir/env"
        ;;
    env)
        cat "${1:-${MATTONI_DB_SERVERS_DIR:?no server folder given}}/env"
        ;;
    stop)
        stop_all "${1:-${MATTONI_DB_SERVERS_DIR:?no server folder given}}"
        ;;
    run)
        [ $# -gt 0 ] || { echo "usage: $0 run CMD..." >&2; exit 2; }
        start_all ""
        trap 'stop_all "$dir"' EXIT
        trap 'exit 130' INT TERM
        # shellcheck disable=SC1091
        source "$dir/env"
        set +e
        "$@"
        status=$?
        set -e
        exit $status
        ;;
    *)
        sed -n '2,17p' "$0" | sed 's/^# \{0,1\}//' >&2
        exit 2
        ;;
esac
