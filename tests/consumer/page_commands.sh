#!/bin/sh
# Runs the commands of the documentation that configure and build: page_commands.sh SOURCES WORK_FOLDER. Build folders that
# they name become folders of the work folder.
set -eu
sources=$1
work=$2
mkdir -p "$work"
cd "$sources"
commands=$(sed -n 's/^    \(cmake .*\)/\1/p' README.md docs/*.md)
[ -n "$commands" ]
printf '%s\n' "$commands" | while read -r command; do
    printf '%s\n' "$command"
    case $command in *" -B "*) ;; *) echo "where does it build?"; exit 1 ;; esac
    moved=$(printf '%s' "$command" | sed "s# /tmp/# $work/#g; s# build# $work/build#g")
    sh -ec "$moved" </dev/null >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
done
"$work/embedded_host/embedded_host" | diff examples/embedded_host/expected.txt -
! [ -e "$work/build/bin/cvregexp" ]
