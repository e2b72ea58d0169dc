#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# build_site.sh FOLDER: the documentation site, in FOLDER/html. Whatever Doxygen or Sphinx have to
# complain about is an error, and so are a link that leads nowhere and a member of a structure that
# no page explains.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
mkdir -p "$1"
folder=$(cd "$1" && pwd)
rm -rf "$folder/html" "$folder/xml"

cd "$here/../.."
{
    cat "$here/Doxyfile"
    printf 'OUTPUT_DIRECTORY = "%s"\n' "$folder"
} | doxygen -
BEATATLAS_DOXYGEN_XML=$folder/xml PYTHONDONTWRITEBYTECODE=1 \
    /usr/bin/python3 -m sphinx -q -W --keep-going -c "$here" -d "$folder/doctrees" docs "$folder/html"
/usr/bin/python3 "$here/check_links.py" "$folder/html"
/usr/bin/python3 "$here/check_members.py" "$folder/xml" "$folder/html"
