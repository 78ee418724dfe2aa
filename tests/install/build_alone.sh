#!/bin/sh
# Configures without the presets where what is optional is missing, and checks what there will be: build_alone.sh SOURCES BUILD
# [ARGUMENT...], with arguments for CMake. Nothing is compiled.
set -eu
sources=$1
build=$2
shift 2
rm -rf "$build"
cmake -S "$sources" -B "$build" "$@" >"$build.log" 2>&1 || { cat "$build.log"; exit 1; }
status=0
expect_message() {
    grep -q "$1" "$build.log" || { echo "no message: $1"; status=1; }
}
expect_message 'Xbyak was not found: the engine is built without machine code'
expect_message 'nlohmann-json was not found: cvregexp is not built'
expect_message 'pandoc was not found: there will be no pages of the manual'
targets=$(cmake --build "$build" --target help)
for target in corvane_regexp corvane_host uninstall; do
    printf '%s\n' "$targets" | grep -q "\<$target\>" || { echo "no target: $target"; status=1; }
done
for target in cvregexp corvane_tests corvane_man; do
    ! printf '%s\n' "$targets" | grep -q "\<$target\>:" || { echo "target: $target"; status=1; }
done
[ "$status" -eq 0 ] || cat "$build.log"
exit $status
