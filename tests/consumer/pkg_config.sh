#!/bin/sh
# Builds an example as pkg-config says, against the library installed at PREFIX: pkg_config.sh SOURCES PREFIX OUTPUT.
# The compiler and its flags are in CXX and CXXFLAGS.
set -eu
pc=$(find "$2" -name corvane_regexp.pc)
PKG_CONFIG_PATH=$(dirname "$pc")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046,SC2086 # lists of words
$CXX -std=c++20 $CXXFLAGS $(pkg-config --cflags corvane_regexp) "$1/examples/find_all.cpp" \
    $(pkg-config --libs corvane_regexp) "-Wl,-rpath,$(pkg-config --variable=libdir corvane_regexp)" -o "$3"
"$3" | grep -q '^xx<bb>, <b> and ac$'

# The same from C. The library that the C library needs is found beside it.
# shellcheck disable=SC2046 # lists of words
"${CC:-cc}" -std=c99 $(pkg-config --cflags corvane_c) "$1/examples/c_interface.c" $(pkg-config --libs corvane_c) \
    "-Wl,-rpath,$(pkg-config --variable=libdir corvane_c)" -o "${3}_c"
"${3}_c" | grep -q '^warning 5 at 0'
