#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_reproducible.sh MAKE_MANUAL PAGES FOLDER
# The same pages at any place, time and language; SOURCE_DATE_EPOCH changes their date alone.
set -euo pipefail
make=$1 pages=$2 folder=$3
rm -rf "$folder"
unset SOURCE_DATE_EPOCH
"$make" "$pages" 2001-02-03 "$folder/one"
(cd / && TZ=Pacific/Auckland LC_ALL=C HOME=/nonexistent "$make" "$pages" 2001-02-03 "$folder/other")
diff -r "$folder/one" "$folder/other"
# A day after the beginning of the count of seconds.
SOURCE_DATE_EPOCH=86400 "$make" "$pages" 2001-02-03 "$folder/dated"
grep -q '^\.TH BEATATLAS 1 1970-01-02 ' "$folder/dated/beatatlas.1"
sed -i 's/ 1970-01-02 / 2001-02-03 /' "$folder"/dated/*.1
diff -r "$folder/one" "$folder/dated"
if "$make" "$folder" 2001-02-03 "$folder/none" 2>/dev/null; then
    echo "a page without its text was made"
    exit 1
fi
