#!/bin/sh
# Plays command lines to the completions of a shell: completions.sh SHELL COMPLETIONS_FOLDER TOOL. Ends with 77 where the
# shell is not installed. Lines of the table: what is typed, then words that must be offered, or with a hyphen and a
# blank in front of them must not.
set -eu
shell=$1
folder=$2
PATH=$(dirname "$3"):$PATH
export PATH
command -v "$shell" >/dev/null || exit 77

table='
cvregexp ma|match
cvregexp |replace explain escape|- --color
cvregexp help sp|split spaces|- match
cvregexp match --col|--color|- --count --json
cvregexp replace --in|--in-place
cvregexp match --color |auto always never|- --json
cvregexp graph --format |dot svg png
cvregexp match -i --speed-up n|now never|- auto
'

# Every line offers as many options as the help has spellings; else options were lost while it was read.
long_options() {
    cvregexp "$1" --help | sed -n 's/^  -.*\(--[A-Za-z][A-Za-z-]*\).*/\1/p; s/^  \(--[A-Za-z][A-Za-z-]*\).*/\1/p' | sort -u
}

# The words that the shell offers for the typed text, one a line.
bash_offers() {
    # shellcheck disable=SC2016 # for the inner shell
    bash -c '. "$1/cvregexp.bash"
        read -ra COMP_WORDS <<<"$2"
        [[ $2 != *" " ]] || COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _cvregexp
        printf "%s\n" "${COMPREPLY[@]}"' bash "$folder" "$1"
}

fish_offers() {
    fish --no-config -c 'source $argv[1]/cvregexp.fish; complete -C $argv[2]' "$folder" "$1" | cut -f 1
}

# What zsh's own functions would be passed, cut down to the words that begin like the typed one.
zsh_offers() {
    # shellcheck disable=SC2016
    zsh -f -c 'compadd() { shift; print -l -- "$@" }
        _describe() { local -a all; all=("${(@P)3}"); print -l -- "${(@)all%%:*}" }
        _files() { }
        _message() { }
        words=("${(@s: :)2}")
        CURRENT=$#words
        PREFIX=$words[CURRENT]
        . "$1/cvregexp.zsh"' zsh "$folder" "$1" | grep -e "^${1##* }"
}

status=0
complain() {
    echo "$shell: $*" >&2
    status=1
}

rows=0
check() {
    rows=$((rows + 1))
    offered=$("${shell}_offers" "$1")
    for word in $2; do
        printf '%s\n' "$offered" | grep -qxF -e "$word" || complain "\"$1\" does not offer $word: $offered"
    done
    for word in ${3#- }; do
        ! printf '%s\n' "$offered" | grep -qxF -e "$word" || complain "\"$1\" offers $word"
    done
}

while IFS='|' read -r typed expected unexpected; do
    [ -z "$typed" ] || check "$typed" "$expected" "$unexpected"
done <<EOF
$table
EOF
[ "$rows" -eq 8 ] || complain "$rows rows were checked"

if [ "$shell" = bash ]; then
    for command in match replace split check explain graph trace profile; do
        [ "$(long_options "$command" | wc -l)" -gt 5 ] || complain "the help of $command has hardly any options"
        # shellcheck disable=SC2046
        check "cvregexp $command --" "$(echo $(long_options "$command"))" ""
    done
fi
exit $status
