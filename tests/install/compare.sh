#!/bin/sh
# Compares what is installed at PREFIX with a list: compare.sh PREFIX LIST LIBDIR BUILD_TYPE [LEFT_OUT...]. In the list the
# folder of libraries is lib, and what CMake calls after the build type is called after release. Parts that are left out
# are given by the beginnings of their paths.
set -eu
prefix=$1
list=$2
libdir=$3
build_type=$4
shift 4

without() {
    script=
    for start in "$@"; do
        script="$script;\#^$start#d"
    done
    sed "${script#;}"
}

find "$prefix" ! -type d | sed -e "s#^$prefix/##" -e "s#^$libdir/#lib/#" -e "s#-targets-$build_type\.cmake#-targets-release.cmake#" |
    without "$@" | LC_ALL=C sort >"$prefix.files"
[ -s "$prefix.files" ]
if changes=$(without "$@" <"$list" | diff -U 0 - "$prefix.files"); then
    exit 0
fi
printf '%s\n' "$changes"
echo "If this is meant, change ${list##*/}; debian/*.install say which package gets a file."
exit 1
