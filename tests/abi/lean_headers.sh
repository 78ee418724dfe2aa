#!/bin/sh
# What including a header of the interface brings along: lean_headers.sh INCLUDE_FOLDER LIST, with the compilers CXX and
# CC. A row of the list is a language, a header, the greatest number of headers that it may include in all and of lines
# without blank ones after preprocessing, and a word that must be in none of the names. Nothing is timed.
set -eu
folder=$1
list=$2
status=0
rows=0

check() {
    language=$1 header=$2 most_headers=$3 most_lines=$4 barred=$5
    rows=$((rows + 1))
    source="#include \"$header\""
    shift 5
    case $language in
        c++*) set -- "${CXX:-c++}" -x c++ ;;
        *) set -- "${CC:-cc}" -x c -pedantic -Wall -Wextra -Werror ;;
    esac
    set -- "$@" "-std=$language" -I "$folder" -
    printf '%s\n' "$source" | "$@" -fsyntax-only
    names=$(printf '%s\n' "$source" | "$@" -M | tr ' ' '\n' | grep '\.h\|/' | sort -u)
    headers=$(printf '%s\n' "$names" | wc -l)
    lines=$(printf '%s\n' "$source" | "$@" -E -P | grep -c .)
    echo "$header ($language): $headers headers, $lines lines"
    if [ "$headers" -gt "$most_headers" ] || [ "$lines" -gt "$most_lines" ]; then
        echo "  more than $most_headers headers or $most_lines lines"
        status=1
    fi
    inside=$(printf '%s\n' "$names" | grep -c -F "/$barred/" || true)
    if [ "$inside" -gt 0 ]; then
        echo "  $inside of $barred"
        status=1
    fi
}

while read -r language header most_headers most_lines barred; do
    case $language in
        '#'* | '') ;;
        *) check "$language" "$header" "$most_headers" "$most_lines" "$barred" ;;
    esac
done <"$list"
[ "$rows" -gt 0 ]
exit $status
