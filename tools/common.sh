# Shared by the scripts of this folder: where things are, and how a script says what it does.
# shellcheck shell=bash

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD=$ROOT/build
# shellcheck disable=SC2034  # used by the scripts that source this file
CHECK_DIR=$BUILD/check
JOBS=${JOBS:-$(nproc)}

# The Windows folder. With TORVANE_WINE=RELEASE, Windows programs run on the Wine of that Debian release
# (tools/second-wine), in folders of its own.
# shellcheck disable=SC2034
WINE_FOLDER=$BUILD/wine${TORVANE_WINE:+-on-$TORVANE_WINE}
[ -z "${TORVANE_WINE:-}" ] || PATH=$BUILD/wine-of-$TORVANE_WINE/bin:$PATH

# say TEXT: one line about what is happening now.
say() { printf '    %s\n' "$*"; }

# step TEXT: begins a step.
step() { printf '==> %s\n' "$*"; }

# die TEXT: ends the script with the cause.
die() {
    printf '\n*** %s\n' "$*" >&2
    exit 1
}

# seconds_since START: the time from START ($EPOCHREALTIME) until now, as "12.3".
seconds_since() {
    local now=${EPOCHREALTIME/[.,]/} start=${1/[.,]/}
    local tenths=$(((now - start) / 100000))
    printf '%d.%d' $((tenths / 10)) $((tenths % 10))
}

# quietly LOG COMMAND...: runs the command with its output in LOG, which is shown only when the command fails.
quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if ! "$@" >"$log" 2>&1; then
        tail -n 60 "$log" >&2
        die "failed: $* (the whole output is in ${log#"$ROOT"/})"
    fi
}

# as_root COMMAND...: runs the command as root, through sudo where that is needed.
as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        die "'$*' needs root: run this as root, or install sudo"
    fi
}

# use_wine FOLDER: the environment in which Windows programs run.
use_wine() {
    export WINEPREFIX=$1 WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
    # Neither .NET nor an HTML engine is needed, and asking to fetch them would stop an unattended run; no menu entries
    # for Windows programs on the machine's own desktop.
    export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'
}

# start_screen: starts a screen without a monitor, of SCREEN_SIZE pixels, on a display number that is free, and sets DISPLAY
# and SCREEN_PID.
SCREEN_SIZE=1600x1000
start_screen() {
    # A Windows desktop that began without a screen stays without one until its server ends.
    stop_wine
    local numbers
    numbers=$(mktemp -d)
    mkfifo "$numbers/number"
    Xvfb -displayfd 3 -screen 0 "${SCREEN_SIZE}x24" -nolisten tcp 3>"$numbers/number" >/dev/null 2>&1 &
    SCREEN_PID=$!
    local number
    read -r -t 30 number <"$numbers/number" || die "Xvfb did not start"
    rm -rf "$numbers"
    export DISPLAY=:$number
}

# stop_screen: ends the screen of start_screen, if one was started.
stop_screen() {
    [ -n "${SCREEN_PID:-}" ] || return 0
    kill "$SCREEN_PID" 2>/dev/null || true
    wait "$SCREEN_PID" 2>/dev/null || true
    SCREEN_PID=
}

# stop_wine: ends what still runs in the Windows folder, and its server; only ours, others have folders of their own.
stop_wine() {
    [ -n "${WINEPREFIX:-}" ] && [ -d "$WINEPREFIX" ] || return 0
    wineserver -k 2>/dev/null || true
}

# alone_here: ends the script when another ./torvane, ./check or ./measure is at work in this folder; they share the
# Windows folder and would end each other's programs. Holds descriptor 8, which no program that outlives the script may
# inherit.
alone_here() {
    mkdir -p "$BUILD"
    exec 8>"$BUILD/.at-work"
    flock -n 8 || die "another ./torvane, ./check or ./measure is at work in this folder"
}
