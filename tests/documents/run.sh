#!/usr/bin/env bash
# Runs the commands of the documents as they are printed, in a copy of the tree in which only ./demo ran, and compares
# what they print. In a document
#   ```sh                         begins commands; those of one document run in one shell, in the order of the document;
#   ```text                       begins what the commands before it print on standard output; a line "..." stands for any
#                                 lines;
#   <!-- not run: REASON -->      stands before a block of either kind that is not run or not compared.
# Usage: tests/documents/run.sh [DOCUMENT...]    (default: all)
set -euo pipefail
cd "$(dirname "$0")/../.."

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Writes the blocks of the document $1 as $2/N.sh and $2/N.text, where N is the line of the block; a text has the N of its
# commands. Prints what is wrong with the document.
split() { # DOCUMENT FOLDER
    awk -v document="$1" -v folder="$2" '
        function wrong(what) { print document ":" NR ": " what }
        /^<!-- not run: .+ -->$/ { reason = 1; next }
        !inside && /^ *```/ {
            inside = 1
            language = $0
            sub(/^ *```/, "", language)
            target = ""
            if (language == "") wrong("a block without a language")
            else if (reason) target = ""
            else if (language == "sh") { commands = sprintf("%05d", NR); target = folder "/" commands ".sh" }
            else if (language == "text" && commands == "") wrong("a text that follows no commands")
            else if (language == "text") { target = folder "/" commands ".text"; commands = "" }
            reason = 0
            next
        }
        /^ *```$/ { inside = 0; next }
        inside { if (target != "") print >target; next }
        /[^ ]/ && reason { wrong("a mark before no block"); reason = 0 }
        /^#/ { commands = "" }
        END { if (inside) wrong("a block without an end") }' "$1"
}

# Whether the lines of $1 match those of $2, in which a line "..." stands for any lines.
matches() { # PRINTED WANTED
    local printed wanted
    printed=$(<"$1")
    wanted=$(sed 's/[]\\*?[]/\\&/g' "$2")
    wanted=$'\n'${wanted}$'\n'
    wanted=${wanted//$'\n...\n'/$'\n*\n'}
    [[ $'\n'$printed$'\n' == $wanted ]] || [[ $'\n'$printed$'\n' == ${wanted//$'\n*\n'/$'\n'} ]]
}

mkdir "$scratch/tree"
tar -c --exclude=./build --exclude=./.git . | tar -x -C "$scratch/tree"
(cd "$scratch/tree" && ./demo) >"$scratch/demo" 2>&1 || { echo "FAILED: ./demo"; cat "$scratch/demo"; exit 1; }

scripts/postgresql start "$scratch/postgresql" $$
. "$scratch/postgresql/environment"

documents=("$@")
[ $# -gt 0 ] || documents=(*.md docs/[!c]*.md docs/configuration.md) # docs/checks.md has examples, which have tests
for document in "${documents[@]}"; do
    blocks=$scratch/${document//\//_}
    mkdir "$blocks"
    split "$document" "$blocks" | sed 's/^/FAILED: /'
    # Each block is a part of one script, so variables and functions stay.
    {
        echo "set -euo pipefail"
        for block in "$blocks"/*.sh; do
            [ -e "$block" ] || continue
            printf 'exec >%q.out 2>%q.err\n' "$block" "$block"
            cat "$block"
        done
        printf 'exec >/dev/null; touch %q/end\n' "$blocks"
    } >"$blocks/script"
    (cd "$scratch/tree" && exec bash "$blocks/script") </dev/null || true
    for block in "$blocks"/*.sh; do
        [ -e "$block" ] || continue
        line=${block##*/}
        name=$document:$((10#${line%.sh}))
        text=${block%.sh}.text
        if [ ! -e "$block.out" ]; then
            echo "FAILED: $name did not run"
        elif [ ! -e "$blocks/end" ] && [ "$block.out" == "$(ls "$blocks"/*.out | tail -n 1)" ]; then
            echo "FAILED: $name"
            tail -n 20 "$block.out" "$block.err"
        elif [ -e "$text" ] && ! matches "$block.out" "$text"; then
            echo "FAILED: $name prints something else"
            diff "$text" "$block.out" || cat "$block.err"
        else
            echo "passed: $name"
        fi
    done
done
table=$(sed -n '/^user  *of 1000/,/^```/{/^```/d;p}' README.md)
[[ "$(<"$scratch/demo")" == *"$table"* ]] && echo "passed: ./demo prints the table of README.md" ||
    echo "FAILED: ./demo does not print the table of README.md"
sed -n '/To try next/,$s/^  //p' "$scratch/demo" >"$scratch/next"
if (cd "$scratch/tree" && bash -euo pipefail "$scratch/next") >"$scratch/printed" 2>&1 && [ -s "$scratch/next" ]; then
    echo "passed: the commands that ./demo suggests"
else
    echo "FAILED: the commands that ./demo suggests"
    cat "$scratch/printed"
fi
