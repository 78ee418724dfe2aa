#!/bin/sh
# What a shared library exports, one name a line: exports.sh LIBRARY prints it; exports.sh LIBRARY LIST [PREFIX] compares it
# with the list, of which every name must begin with the prefix. Functions and data that are strong, vtables and type
# information: weak inline functions depend on the compiler and its options, and so do vtables of classes that have no
# others. Names are demangled; those of the lists are of x86-64 with g++.
set -eu

exports() {
    nm --dynamic --demangle --defined-only "$1" | sed -n \
        -e '/ __odr_asan/d' -e '/ for std::/d' \
        -e 's/^[0-9a-f]* [TDBR] //p' \
        -e 's/^[0-9a-f]* V \(\(vtable\|VTT\|typeinfo\) for .*\)/\1/p' | LC_ALL=C sort -u | awk '
        { name[NR] = $0 }
        /::~?[A-Za-z_]+\(/ { class = $0; sub(/::~?[A-Za-z_]+\(.*/, "", class); hasFunctions[class] = 1 }
        END {
            for (i = 1; i <= NR; i++) {
                class = name[i]
                if (!sub(/^vtable for /, "", class) || class in hasFunctions) print name[i]
            }
        }'
}

if [ $# -eq 1 ]; then
    exports "$1"
    exit
fi
if [ $# -eq 3 ] && grep -v "^$3" "$2"; then
    echo "${2##*/}: names of this library begin with $3"
    exit 1
fi
changes=$(exports "$1" | diff -U 0 "$2" - | grep '^[-+][^-+]') || exit 0
cat <<EOF
$(basename "$1") does not export what ${2##*/} lists:

$changes

What is missing (-) breaks applications, unless nothing installed declared it. If the change is meant, write the list anew,

    tests/abi/exports.sh $1 >tests/abi/${2##*/}

and commit it. Where a line is missing, the next release raises MINOR in regexp/version.h.
EOF
exit 1
