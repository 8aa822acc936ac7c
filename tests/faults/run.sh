#!/usr/bin/env bash
# Plays faults on the requests of a host: each system call fails, each allocation fails, the server's replies end after
# each byte (the connection is closed, reset, or stalled). Every answer must be right or refused, without a crash and
# within the time limit. Failures that known.txt lists are only counted.
# Usage: tests/faults/run.sh [SECONDS|all [GROUP...]]    plays a random choice for this time (60), or all, which takes
#                                                        hours; GROUP: such as 'PostgreSql login closed'
#        tests/faults/run.sh DATABASE ROAD KIND N        plays one fault again, as a failure prints it
# FAULT_SEED: the seed of an earlier choice, to repeat it.
set -euo pipefail
cd "$(dirname "$0")/../.."

FAULT_SECONDS=${1:-60}
if [[ $* =~ ^(Sqlite|PostgreSql)\ (login|name)\ [a-z0-9:=A-Z]+\ [0-9]+\+?$ ]]; then
    FAULT_SECONDS=one
elif [[ ! $FAULT_SECONDS =~ ^(all|[1-9][0-9]*)$ ]]; then
    sed -n '/^# Usage/,/^[^#]/{s/^# //p}' "$0" >&2
    exit 2
fi
faults=$PWD/build/release/bin/faults
scripts/build release faults >&2
unset CFG_REQUIRE_END SECM_ALLOWED_RESOURCES SECM_ALLOWED_ATTRIBUTES TMR_LOG_LEVEL TMR_LOG_FILE
export CFG_REPOSITORY=$PWD/examples/documents/archive.toml
scratch=$(mktemp -d)
trap 'scripts/postgresql stop "$scratch/server"; rm -rf "$scratch"' EXIT

connection() { # DATABASE
    case $1 in
        Sqlite) echo "sqlite3://db=$scratch/security.db" ;;
        PostgreSql) scripts/postgresql connection "$scratch/server" sample ;;
        *) echo "There is no database '$1'" >&2; return 2 ;;
    esac
}
# Faults for every system call that the requests make on their own thread.
system_calls() { # CONNECTION ROAD
    local calls trace=$scratch/trace-${1%%:*}-$2
    calls=$(sed -n 's/^\([a-z0-9]*\):.*/\1/p' tests/faults/system_calls.txt | sort -u | paste -sd,)
    strace -f -o "$trace" -e trace="access,$calls" "$faults" "$1" "$2" requests
    awk '
        NR == FNR { if (!/^#/) errors[++count] = $1; next }
        FNR == 1 { thread = $1 }
        $1 != thread { next }
        /access\("requests"/ { for (call in calls) before[call] = calls[call] }
        match($2, /^[a-z0-9]+\(/) { calls[substr($2, 1, RLENGTH - 1)]++ }
        END {
            for (i = 1; i <= count; i++) {
                call = substr(errors[i], 1, index(errors[i], ":") - 1)
                for (n = before[call] + 1; n <= calls[call]; n++) print errors[i], n "\n" errors[i], n "+"
            }
        }' tests/faults/system_calls.txt "$trace"
}
both() { sed 'p;s/$/+/'; } # each fault once, and lasting

list() { # CONNECTION ROAD GROUP
    case $3 in
        calls) system_calls "$1" "$2" ;;
        memory)
            if [ "$FAULT_SECONDS" == all ]; then
                seq "$("$faults" "$1" "$2" count memory)" | sed 's/^/memory /'
                "$faults" "$1" "$2" places | sed 's/.*/memory &+/'
            else
                "$faults" "$1" "$2" places | sed 's/^/memory /' | both
            fi
            ;;
        *) seq 0 $(($("$faults" "$1" "$2" count closed) - 1)) | sed "s/^/$3 /" | both ;;
    esac
}
play() { # DATABASE ROAD SECONDS <FAULTS
    "$faults" "$(connection "$1")" "$2" play "$3" | sed "s|^  |  tests/faults/run.sh $1 $2 |"
}
group() { # DATABASE ROAD GROUP NUMBER: plays for its share of the time that is left
    local seconds=0 status=0 result faults_of=$scratch/$1-$2-$3
    [ "$FAULT_SECONDS" == all ] || seconds=$(((FAULT_END - $(date +%s)) * $(nproc) / (FAULT_GROUPS - $4)))
    list "$(connection "$1")" "$2" "$3" |
        awk -v seed="$((FAULT_SEED + $4))" 'BEGIN { srand(seed) } { print rand() "\t" $0 }' | sort -g | cut -f 2 >"$faults_of"
    result=$(play "$1" "$2" "$((seconds > 0 ? seconds : FAULT_END > 0))" <"$faults_of") || status=$?
    [ "$status" -eq 0 ] && echo -n "passed" || echo -n "FAILED"
    echo ": faults of $1, $2, $3: $result"
    return "$status"
}

sqlite3 -bail "$scratch/security.db" <examples/documents/security.sql
scripts/postgresql start "$scratch/server" $$
scripts/postgresql database "$scratch/server" sample examples/documents/security.sql >/dev/null

if [ "$FAULT_SECONDS" == one ]; then
    play "$1" "$2" 0 <<<"$3 $4"
    exit
fi
FAULT_END=0
[ "$FAULT_SECONDS" == all ] || FAULT_END=$(($(date +%s) + FAULT_SECONDS))
# Groups with fewer faults come first and leave unused time to the others.
groups=("Sqlite "{login,name}" "{memory,calls} "PostgreSql "{login,name}" "{calls,closed,reset,memory,stalled})
[ $# -lt 2 ] || groups=("${@:2}")
FAULT_GROUPS=${#groups[@]}
FAULT_SEED=${FAULT_SEED:-$RANDOM}
export FAULT_SECONDS FAULT_END FAULT_GROUPS FAULT_SEED faults scratch
export -f connection system_calls both list play group
echo "FAULT_SEED=$FAULT_SEED"
for i in "${!groups[@]}"; do echo "${groups[i]} $i"; done |
    xargs -P "$(nproc)" -I '{}' bash -c "set -euo pipefail; group {}"
