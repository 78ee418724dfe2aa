#!/bin/sh
# Installs a build and uninstalls it: nothing of ours is left, and what others have there is: uninstall.sh BUILD PREFIX
# SOURCES.
set -eu
build=$1
prefix=$2
rm -rf "$prefix"
mkdir -p "$prefix/include/corvane" "$prefix/share/doc"
echo theirs >"$prefix/include/corvane/theirs.h"
cmake --install "$build" --prefix "$prefix" >/dev/null
[ -f "$prefix/include/corvane/regexp/regexp.h" ]
cmake "-Dmanifest=$build/install_manifest.txt" -P "$3/cmake/uninstall.cmake" >/dev/null
cd "$prefix"
left=$(find . ! -type d; find . -depth -path '*corvane*' -type d -empty)
[ "$left" = ./include/corvane/theirs.h ] || { echo "left: $left"; exit 1; }
