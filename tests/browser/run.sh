#!/usr/bin/env bash
# Opens a report with hostile names in Chromium, without a window. Checks what the page shows, that no script from the
# names runs, sorting, searching, choosing an outcome, narrow windows, the light and the dark colours, and print.
# Usage: tests/browser/run.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "$0")/../.."

acfilter=$(realpath "$1")/bin/acfilter
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

expect() { # NAME WANTED GOT
    if [ "$3" == "$2" ]; then
        echo "passed: $1"
    else
        printf 'FAILED: %s\n' "$1"
        diff <(echo "$2") <(echo "$3") || true
    fi
}
browse() { # OPTION... FILE: the errors of the page go to $scratch/console
    rm -rf "$scratch/profile"
    chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
        --disable-component-update --disable-sync --enable-logging=stderr --user-data-dir="$scratch/profile" \
        "${@:1:$#-1}" "file://${*: -1}" 2>"$scratch/console"
}

hostile='</title><script>document.title=1</script>'
sed "s#\.\(documents\)\]#.\"$hostile\"]#; s#fields\.author\.#fields.'<img src=x onerror=\"document.title=2\">'.#" \
    examples/documents/archive.toml >"$scratch/archive.toml"
{
    cat examples/documents/security.sql
    echo "INSERT INTO security_user VALUES ('<script>document.title=3</script>', 'javascript:alert(1)'),"
    echo "    ('\" onmouseover=\"document.title=4\" x=\"', '</td></tr></table><h1>gone</h1>'), ('&lt;b&gt;', ''),"
    echo "    (char(0x202e) || 'nimda', char(0x2066) || 'a' || char(10, 27) || 'b'), ('שלום (admin)', 'board');"
    echo "INSERT INTO security_permission VALUES (3000, 'user', 'tom', 'archive.department', 1, '<!--<svg onload=x>', 0);"
} | sqlite3 -bail "$scratch/security.db"
report=$scratch/report.html
"$acfilter" report -c "$scratch/archive.toml" -s "sqlite3://db=$scratch/security.db" -r "$hostile" --values \
    --format html --output "$report" 2>"$scratch/errors"
expect "writing the report prints nothing" "" "$(<"$scratch/errors")"

browse --dump-dom "$report" >"$scratch/dom"
expect "the page's own style and script run" "0 1" \
    "$(grep -c 'Content Security Policy' "$scratch/console" || true) $(grep -c 'type="search"' "$scratch/dom" || true)"

{ grep -v '^<meta http-equiv="Content-Security-Policy"' "$report"; echo "<script>$(<tests/browser/page.js)</script>"; } \
    >"$scratch/open.html"
facts() { browse "$@" --dump-dom "$scratch/open.html" |
    sed -n '/<pre>/,/<\/pre>/{s/.*<pre>//; s/<\/pre>.*//; s/&lt;/</g; s/&gt;/>/g; s/&amp;/\&/g; p}'; }
light=$(facts)
expect "names are text, and the page sorts and searches" "$(<tests/browser/facts.txt)" "$light"
expect "light" "page: rgb(255, 255, 255)" "$(tail -n 1 <<<"$light")"
expect "dark" "page: rgb(20, 24, 29)" "$(facts --blink-settings=preferredColorScheme=0 | tail -n 1)"
for width in 390 500; do
    expect "$width pixels wide, nothing is cut off and the summary stacks" "wider than the window: false
summary: grid" "$(facts --window-size=$width,900 | grep -E '^(wider|summary)')"
done
expect "without a script, every row is there" "16" "$(grep -c '^<tr><th scope="row"><bdi>' "$report")"
expect "the security database is named, without secrets" "sqlite3://db=$scratch/security.db" \
    "$(sed -nE 's/.*<dt>Security database<.dt><dd><bdi>(.*)<.bdi><.dd>/\1/p' "$report")"

# With rows: bars in proportion, those who see the record first, and the other script's facts on a narrow window.
sqlite3 -bail "$scratch/documents.db" <examples/documents/documents.sql
"$acfilter" report -c examples/documents/archive.toml -s "sqlite3://db=$scratch/security.db" -r documents --format html \
    --data "sqlite3://db=$scratch/documents.db" --table documents --key id --record 17 --output "$report"
{ grep -v '^<meta http-equiv="Content-Security-Policy"' "$report"; echo "<script>$(<tests/browser/page.js)</script>"; } \
    >"$scratch/open.html"
expect "rows: 390 pixels wide, nothing is cut off and the summary stacks" "wider than the window: false
summary: grid" "$(facts --window-size=390,900 | grep -E '^(wider|summary)')"
{
    grep -v '^<meta http-equiv="Content-Security-Policy"' "$report"
    cat <<'END'
<script>
  document.title = Array.from(document.querySelectorAll("#access tbody tr")).filter((row) => row.querySelector("svg"))
    .filter((row) => ["ines", "vera", "tom", "hugo"].includes(row.cells[0].textContent)).map((row) => {
      const bar = row.querySelector("svg"), share = row.querySelector("rect").getBoundingClientRect().width;
      return `${row.cells[0].textContent} ${Math.round(100 * share / bar.getBoundingClientRect().width)} ${row.cells[4].textContent}`;
    }).join(", ");
</script>
END
} >"$scratch/bars.html"
expect "bars in proportion, and those who see the record first" \
    "ines 50 sees, vera 100 sees, hugo 20 does not see, tom 0 does not see" \
    "$(browse --dump-dom "$scratch/bars.html" | sed -n 's/.*<title>\(.*\)<.title>.*/\1/p')"

seq -f 'user%03g' 250 >"$scratch/users.txt"
"$acfilter" report -c "$scratch/archive.toml" -s "sqlite3://db=$scratch/security.db" -r "$hostile" --format html \
    --users-from "$scratch/users.txt" --output "$report"
{
    grep -v '^<meta http-equiv="Content-Security-Policy"' "$report"
    cat <<'END'
<script>
  const seen = () => `${document.querySelector("nav span").textContent}: ${document.querySelectorAll("#access tbody tr").length}`;
  const pages = Array.from(document.querySelectorAll("nav button"));
  document.title = [0, 2, 2, 2, 1, 3].map((number) => { pages[number].click(); return seen(); }).join(", ");
</script>
END
} >"$scratch/pages.html"
expect "a page of rows at a time" \
    "Page 1 of 3: 100, Page 2 of 3: 100, Page 3 of 3: 50, Page 3 of 3: 50, Page 2 of 3: 100, Page 3 of 3: 50" \
    "$(browse --dump-dom "$scratch/pages.html" | sed -n 's/.*<title>\(.*\)<.title>.*/\1/p')"
browse --print-to-pdf="$scratch/report.pdf" "$report" >"$scratch/dom"
pages=$(pdftotext -layout "$scratch/report.pdf" - | tr -d '\n' | tr '\f' '\n' | grep -c .)
pdftotext -layout "$scratch/report.pdf" "$scratch/printed"
expect "printed, every page has the table's head, and no page the search" "yes $pages 250 0" \
    "$([ "$pages" -gt 1 ] && echo yes) $(grep -c 'Group.*Outcome.*Filter' "$scratch/printed") \
$(grep -c 'user[0-2][0-9][0-9]' "$scratch/printed") $(grep -c Search "$scratch/printed" || true)"
