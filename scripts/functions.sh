# shellcheck shell=bash
# Shared by the scripts beside it, which source it first.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# A script that leaves with this status could not check anything, because a tool is missing.
readonly kSkipped=77

# Number of jobs to run at once.
jobs_at_once() {
    nproc 2>/dev/null || echo 2
}

have() {
    command -v "$1" >/dev/null 2>&1
}

# require <command> <what it is for> leaves the script as skipped if the command is missing.
require() {
    if ! have "$1"; then
        echo "skipped: $2 ($1 is missing)"
        exit "$kSkipped"
    fi
}

# require_file <path> <what it is for> does so if the file is missing.
require_file() {
    if ! [ -e "$1" ]; then
        echo "skipped: $2 ($1 is missing)"
        exit "$kSkipped"
    fi
}

# Names the C++ files of the repository, those not yet committed included, separated by NUL.
cpp_files() {
    if have git && git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
        git ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp'
    else
        find . -name build -prune -o \( -name '*.h' -o -name '*.cpp' \) -print0
    fi
}

declare -a skipped_steps=()

# step <name> <command>... runs one step of a longer run. A failure ends the run with the step's
# name; a skipped step is remembered in skipped_steps.
step() {
    local name=$1 status=0 start=$SECONDS
    shift
    echo "== $name"
    "$@" || status=$?
    if [ "$status" -eq "$kSkipped" ]; then
        skipped_steps+=("$name")
    elif [ "$status" -ne 0 ]; then
        echo "FAILED: $name (exit status $status)" >&2
        exit 1
    else
        echo "== $name: passed in $((SECONDS - start)) s"
    fi
}
