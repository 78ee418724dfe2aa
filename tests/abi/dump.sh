#!/bin/sh
# The binary interface with its types, as abidw sees it: dump.sh compare|accept BUILD INSTALLED. Takes the libraries of a build
# with debugging information and the headers of an installation of it. `compare` holds them against the dumps in this
# folder, `accept` writes those, and the lists of exported names, anew.
set -eu
task=$1
build=$2
installed=$3
folder=$(dirname "$0")

# Of types only what installed headers declare counts, and no place of this machine gets into the dump.
dump() {
    abidw --headers-dir "$installed/include" --drop-private-types --no-corpus-path --no-comp-dir-path --no-show-locs \
        --no-elf-needed --type-id-style hash --out-file "$2" "$1"
}

compare() {
    library=$1 name=$2
    xz --decompress --stdout "$folder/$name.abi.xz" >"$build/$name.accepted.abi"
    status=0
    abidiff --leaf-changes-only --impacted-interfaces "$build/$name.accepted.abi" "$build/$name.abi" >"$build/$name.report" || status=$?
    # The bits of the status: 1 and 2 trouble, 4 a change that somebody has to judge, 8 one that is surely incompatible.
    case $status in
        0) echo "$name: no change" ;;
        4)
            cat "$build/$name.report"
            echo "$name: changed; a size, an offset or a value that applications were compiled with breaks them"
            changed=1
            ;;
        12)
            cat "$build/$name.report"
            echo "$name: incompatible; applications have to be built again"
            changed=1
            ;;
        *) cat "$build/$name.report"; exit 1 ;;
    esac
}

changed=0
for library in "$build"/lib/libcorvane_*.so; do
    name=$(basename "$library" .so)
    name=${name#lib}
    [ "$name" != corvane_regexp_alone ] || continue
    dump "$library" "$build/$name.abi"
    if [ "$task" = accept ]; then
        xz -9 --stdout "$build/$name.abi" >"$folder/$name.abi.xz"
        "$folder/exports.sh" "$library" >"$folder/$name.txt"
        echo "$name: accepted, $(wc -l <"$folder/$name.txt") names, $(wc -c <"$folder/$name.abi.xz") bytes"
    else
        compare "$library" "$name"
    fi
done
if [ "$changed" -ne 0 ]; then
    echo 'If this is meant, run "./dev abi --accept" and commit; for an incompatible change raise MINOR in regexp/version.h.'
    exit 1
fi
