#!/bin/sh
# Builds a program in C as pkg-config says, against the library installed at PREFIX, and runs it:
# pkg_config_c.sh SOURCE PREFIX OUTPUT. The compiler and its flags are in CC and CFLAGS.
set -eu
PKG_CONFIG_PATH=$(dirname "$(find "$2" -name corvane_c.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046,SC2086 # lists of words
${CC:-cc} -std=c99 -pedantic -Wall -Wextra -Werror ${CFLAGS:-} $(pkg-config --cflags corvane_c) "$1" \
    $(pkg-config --libs corvane_c) "-Wl,-rpath,$(pkg-config --variable=libdir corvane_c)" -o "$3"
"$3" | grep -qxF "[2,4] $(pkg-config --modversion corvane_c)"
