#!/usr/bin/env bash
# Installs a build, moves it, and builds and runs hosts against it from outside the tree; the same for the Debian
# packages; then puts a security manager of a host's own in the place of the supplied one, both ways.
# Usage: tests/package/run.sh BUILD_FOLDER
set -euo pipefail
cd "$(dirname "$0")/../.."

build=$(realpath "$1")
examples=$PWD/examples
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
exec 3>&1 >"$build/package.log" 2>&1 # what the tools say; results go to 3
trap 'tail -n 20 "$build/package.log" >&3' ERR

expect() { # NAME WANTED COMMAND...
    local name=$1 wanted=$2 got
    shift 2
    got=$("$@" 2>&1) || true
    if [ "$got" == "$wanted" ]; then
        echo "passed: $name" >&3
    else
        printf 'FAILED: %s\n  wanted: %s\n  got: %s\n' "$name" "$wanted" "$got" >&3
    fi
}
counted() { "$@" | uniq -c | sed 's/^ *//'; } # equal lines once, with their number
cmake_build() { # SOURCE PREFIX NAME [OPTION...]
    cmake -G Ninja -S "$1" -B "$scratch/$3" -DCMAKE_PREFIX_PATH="$2" -DCMAKE_BUILD_TYPE=Release "${@:4}"
    cmake --build "$scratch/$3"
}

export CFG_REPOSITORY=$examples/documents/archive.toml
sqlite3 -bail "$scratch/security.db" <"$examples/documents/security.sql"
connection=sqlite3://db=$scratch/security.db
answer="SELECT * FROM documents WHERE department = ('Legal');"
quiet=(env TMR_LOG_LEVEL=0)

hosts_against() { # NAME PREFIX LOADS
    local name=$1 prefix=$2 loads=$3
    cmake_build "$examples/consumers/linking" "$prefix" "$name-linking"
    expect "$name: a host that links" "$answer" "${quiet[@]}" "$scratch/$name-linking/host" documents "$connection" hugo
    expect "$name: a host that implements the security manager's interface" "department IN ('Legal', 'Fleet')" \
        "$scratch/$name-linking/own_login" documents Legal Fleet
    expect "$name: a host that explains" "filter: department = ('Legal')" \
        bash -c "TMR_LOG_LEVEL=0 '$scratch/$name-linking/why' documents '$connection' hugo | tail -n 1"
    cmake_build "$examples/consumers/loading" "$prefix" "$name-loading"
    expect "$name: a host that loads by name, $loads times" \
        "$loads administration library before connecting: 0, connected: 1, after: 1, filter: department = ('Legal')
1 module or security manager left behind: 0" \
        counted env LD_LIBRARY_PATH="$prefix/lib" "$scratch/$name-loading/loader" libSECM_AccessControl.so.0 "$loads" \
        documents "$connection" hugo
    mkdir "$scratch/$name-make"
    PKG_CONFIG_PATH=$prefix/lib/pkgconfig make -C "$scratch/$name-make" -f "$examples/consumers/make/Makefile" \
        VPATH="$examples/consumers/make" LDFLAGS="-Wl,-rpath,$prefix/lib"
    expect "$name: a host made with pkg-config" "$answer" "${quiet[@]}" "$scratch/$name-make/host" documents "$connection" hugo
    expect "$name: acfilter" "department = ('Legal')" "$prefix/bin/acfilter" filter -s "$connection" -r documents hugo
}

cmake --install "$build" --prefix "$scratch/first"
mv "$scratch/first" "$scratch/moved"
expect "no path of the build in any installed file" "" grep -rlE "$build|$PWD|$scratch/first" "$scratch/moved"
hosts_against "installed and moved" "$scratch/moved" 1000

verdict=$(scripts/interfaces compare "$scratch/moved" 2>&1) && status=0 || status=$?
expect "$(tail -n 1 <<<"$verdict")" "0" echo "$status"
echo "$verdict"

pack() { (cd "$build" && cpack -G DEB -B "$1") && rm -r "$1/_CPack_Packages"; } # FOLDER
pack "$scratch/deb"
(umask 077 && pack "$scratch/again") # another folder, another time, other permissions
expect "two runs of cpack give the same packages" "" diff -r "$scratch/deb" "$scratch/again"
root=--allow-root
[ "$(id -u)" -eq 0 ] || root=
expect "lintian" "" lintian $root "$scratch"/deb/*.deb
for package in "$scratch"/deb/*.deb; do
    dpkg-deb -x "$package" "$scratch/root"
done
expect "two major versions of the library can be installed together" "" bash -c \
    "dpkg-deb -c '$scratch'/deb/libsecm-accesscontrol0_*.deb | awk '{print \$6}' | grep -vE '/$|\.so\.0|libsecm-accesscontrol0'"
documents=$scratch/root/usr/share/doc
expect "documents, tables, sample and completion are in the packages" "7" bash -c 'ls -d "$@" | wc -l' - "$documents"/secm-accesscontrol/README.md \
    "$documents"/secm-accesscontrol/{SECURITY.md,docs/operations.md,examples/documents/{schema.sql,archive.toml}} \
    "$scratch/root/usr/share/bash-completion/completions/acfilter" "$scratch/root/usr/share/man/man1/acfilter.1.gz"
for package in libsecm-accesscontrol0 acfilter; do
    cat >"$scratch/bill.cmake" <<'END'
cmake_minimum_required(VERSION 3.25)
file(READ ${FILE} text)
string(JSON version GET "${text}" spdxVersion)
string(JSON count LENGTH "${text}" packages)
string(JSON relationships LENGTH "${text}" relationships)
set(names "")
math(EXPR last "${count} - 1")
foreach(index RANGE ${last})
    string(JSON name GET "${text}" packages ${index} name)
    list(APPEND names ${name})
endforeach()
foreach(needed IN LISTS NEEDED)
    if(NOT needed IN_LIST names)
        message("${needed} is missing in the bill of materials")
    endif()
endforeach()
if(NOT version STREQUAL "SPDX-2.3" OR relationships LESS count)
    message("not of SPDX 2.3, or without relationships")
endif()
END
    # Everything that the package depends on, apart from its own library.
    needed=$(dpkg-deb -f "$scratch"/deb/"$package"_*.deb Depends | tr ',' '\n' | sed -E 's/^ *([^ ]+).*/\1/; /^libsecm/d; s/-fmt9$//' | paste -sd';')
    expect "$package: its bill of materials lists what it loads" "" cmake -D "FILE=$documents/$package/$package.spdx.json" \
        -D "NEEDED=$needed" -P "$scratch/bill.cmake"
done
depends=$(dpkg-deb -f "$scratch"/deb/libsecm-accesscontrol0_*.deb Depends)
expect "the package depends on what it links" "yes" bash -c "[[ '$depends' == *libsoci-core* && '$depends' == *libspdlog* ]] && echo yes"
# Installed, their libraries are where the loader looks.
export LD_LIBRARY_PATH=$scratch/root/usr/lib
hosts_against "Debian packages" "$scratch/root/usr" 1
unset LD_LIBRARY_PATH

own="department = ('Legal') AND author = ('e1')"
cmake_build "$examples/own_security_manager" "$scratch/moved" own
rm "$scratch"/moved/lib/libsecm.so* "$scratch"/moved/lib/libsecm_admin.so*
for road in --ip=10.0.0.7 --no-login; do
    expect "a security manager of the host's own, put in place by the loader ($road)" "$own" \
        env LD_LIBRARY_PATH="$scratch/own" "$scratch/moved/bin/acfilter" filter -s memory -r documents "$road" ada
done
expect "a check with a security manager that lists nothing" "acfilter: the security manager in use cannot list its users, \
which check needs for --security; leave the option out to check the configuration alone" \
    env LD_LIBRARY_PATH="$scratch/own" "$scratch/moved/bin/acfilter" check -s memory
expect "a report with a security manager that lists nothing" \
    "acfilter: the security manager in use cannot list its users; name them with --users-from" \
    env LD_LIBRARY_PATH="$scratch/own" "$scratch/moved/bin/acfilter" report -s memory -r documents
# The module and one small host: acfilter has been shown above with the same libraries.
cmake --preset release -B "$scratch/option" -DSECM_SECURITY_MANAGER="$examples/own_security_manager" \
    -DSECM_BUILD_TOOLS=OFF -DBUILD_TESTING=OFF
cmake --build "$scratch/option" --target host
expect "a security manager of the host's own, put in place by the option" "SELECT * FROM documents WHERE $own;" \
    "${quiet[@]}" "$scratch/option/bin/host" documents memory ada
