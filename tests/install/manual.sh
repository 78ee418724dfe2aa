#!/bin/sh
# Looks over the installed pages of the manual: manual.sh PREFIX. Every page has a name with a summary and more text than
# that, and where there is man, it formats them without a warning but for wide lines.
set -eu
status=0
pages=0
for page in "$1"/share/man/man*/*; do
    pages=$((pages + 1))
    grep -q '^[a-z_-]* - .\|^[a-z_-]* \\- .' "$page" || { echo "$page: no summary"; status=1; }
    grep -A 3 'SH DESCRIPTION\|SH "DESCRIPTION"' "$page" | grep -q '^[A-Za-z]' || { echo "$page: no description"; status=1; }
    if command -v man >/dev/null && command -v groff >/dev/null; then
        warnings=$(MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null |
            awk '/:$/ { place = $0; next } { print place $0; place = "" }' |
            grep -v 'will not fit\|cannot adjust\|can.t break\|table wider' || true)
        [ -z "$warnings" ] || { echo "$page: $warnings"; status=1; }
    fi
done
[ "$pages" -ge 2 ] || { echo "$pages pages"; exit 1; }
exit $status
