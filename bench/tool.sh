#!/bin/bash
# cvregexp beside ripgrep and grep: processor seconds over one large text, and elapsed seconds over a tree of many files.
#
#     bench/tool.sh CVREGEXP [MEGABYTES [FILES]]
#
# The text is examples/sherlock.txt again and again, the files are pieces of it. The programs must count the same lines, or
# the row says so: lines of that text end with CR LF, of which the peers see the CR.
set -eu
cd "$(dirname "$0")/.."
tool=$1
megabytes=${2:-300}
files=${3:-20000}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

text=$work/prose.txt
size=$(stat -c %s examples/sherlock.txt)
for ((written = 0; written < megabytes * 1000000; written += size)); do cat examples/sherlock.txt; done > "$text"

# The least of three runs; prints the seconds and, as the last word, the lines that were counted.
TIMEFORMAT='%U %S %R'
measure() {
    local kind=$1 best='' count='' spent
    shift
    for _ in 1 2 3; do
        { time count=$("$@" 2>/dev/null | awk -F: '{ n += $NF } END { print n + 0 }'); } 2> "$work/time"
        spent=$(awk -v kind="$kind" '{ print kind == "processor" ? $1 + $2 : $3 }' "$work/time")
        if [ -z "$best" ] || awk "BEGIN { exit !($spent < $best) }"; then best=$spent; fi
    done
    echo "$best $count"
}

row() {
    local kind=$1 label=$2 ours theirs
    ours=$(measure "$kind" "${our_command[@]}")
    theirs=$(measure "$kind" "${rg_command[@]}")
    label=$label awk -v ours="$ours" -v theirs="$theirs" -v grep="$(measure "$kind" "${grep_command[@]}")" 'BEGIN {
        split(ours, a, " "); split(theirs, b, " "); split(grep, c, " ")
        printf "%-32s %8.2f %8.2f %8.2f %7.2f%s\n", ENVIRON["label"], a[1], b[1], c[1], a[1] / (b[1] > 0 ? b[1] : 0.01),
            a[2] == b[2] ? "" : "  counts " a[2] " and " b[2]
    }'
}

printf '%-32s %8s %8s %8s %7s\n' "processor s, $megabytes MB" ours rg grep 'to rg'
while IFS=@ read -r flag pattern; do
    our_command=("$tool" match -j1 -c -e "$pattern" "$text")
    rg_command=(rg --no-config -j1 -c ${flag:+-P} -e "$pattern" "$text")
    grep_command=(grep -c -P -e "$pattern" "$text")
    row processor "$pattern"
done <<'PATTERNS'
@Sherlock Holmes
@zqxj
@the
@Holmes|Watson|Moriarty|Adler
@cab|carriage|coach|dog-cart|hansom|train
@\w+ing
@[A-Z][a-z]+ [A-Z][a-z]+
@\w+\s+Holmes
@"[^"]*"
@^The
@\d{2,}
@[^aeiou\s]{6,}
P@(?<=the )[a-z]+ing
P@\w+(?= Holmes)
P@(\w)\1\w*\s
PATTERNS

mkdir "$work/tree"
awk -v files="$files" -v folder="$work/tree" '
    { lines[NR] = $0 }
    END {
        for (i = 0; i < files; ++i) {
            directory = folder "/" i % 100
            if (i < 100) system("mkdir " directory)
            name = directory "/" i ".c"
            for (k = 0; k < 150; ++k) print lines[(i * 37 + k) % NR + 1] > name
            close(name)
        }
    }' examples/sherlock.txt
printf '%-32s %8s %8s %8s %7s\n' "elapsed s, $files files" ours rg grep 'to rg'
for pattern in 'Sherlock Holmes' '\w+ing' 'zqxj'; do
    our_command=("$tool" match -j2 -r -c -e "$pattern" "$work/tree")
    rg_command=(rg --no-config -j2 -c -e "$pattern" "$work/tree")
    grep_command=(grep -r -c -P -e "$pattern" "$work/tree")
    row elapsed "$pattern"
done
