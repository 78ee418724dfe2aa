#!/bin/sh
# Holds debian/ against the rest of the tree: debian.sh SOURCES. The packages have the version of regexp/version.h, the name of the
# libraries' one has that part of it which applications depend on, and the symbols of the C library are those that it exports.
set -eu
cd "$1"
part() { sed -n "s/^#define CORVANE_REGEXP_VERSION_$1 \([0-9]*\)$/\1/p" regexp/version.h; }
version=$(part MAJOR).$(part MINOR).$(part PATCH)
abi=$(part MAJOR)
[ "$abi" -ne 0 ] || abi=0.$(part MINOR)
status=0
expect() {
    grep -q "$2" "$1" || { echo "$1 has nothing like $2"; status=1; }
}
expect debian/changelog "^corvane-regexp ($version-[0-9a-z]*) "
expect debian/control "^Package: libcorvane-regexp$abi\$"
expect "debian/libcorvane-regexp$abi.install" "libcorvane_regexp\.so\."

symbols=debian/libcorvane-c$(part MAJOR).symbols
sed -n 's/^ \(cvre_[a-z][^@]*\)@\([^ ]*\) .*/\1@@\2/p' "$symbols" | LC_ALL=C sort | diff - tests/abi/corvane_c.txt ||
    { echo "$symbols (<) and tests/abi/corvane_c.txt (>) differ"; status=1; }
exit $status
