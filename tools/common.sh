# Shared by the scripts of this folder: where things are, and how a script says what it does.
# shellcheck shell=bash

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BUILD=$ROOT/build
# shellcheck disable=SC2034  # used by the scripts that source this file
CHECK_DIR=$BUILD/check
JOBS=${JOBS:-$(nproc)}

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
