#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# examples/cluster/parallel.sh: the catalogue merged of all shares is that of one scan, also when
# shares were killed and begin again.
#   check_parallel.sh SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL
set -euo pipefail
export LC_ALL=C.UTF-8
sources=$1 folder=$2 MAKE_TRACK=$3 TOOL=$4
. "$sources/tests/cluster/support.sh"

rm -rf "$folder"
mkdir -p "$folder/music"
make_music "$folder/music"
"$TOOL" scan --quiet --catalogue "$folder/one.sqlite" "$folder/music" || true
export BEATATLAS=$TOOL

# The first try of two shares ends by a signal.
cat >"$folder/dying" <<TRY
#!/usr/bin/env bash
for word in "\$@"; do
    case \$word in
    1/4 | 3/4)
        if mkdir "$folder/died-\${word%/*}" 2>/dev/null; then kill -KILL \$\$; fi ;;
    esac
done
exec "$TOOL" "\$@"
TRY
chmod +x "$folder/dying"
BEATATLAS=$folder/dying "$sources/examples/cluster/parallel.sh" "$folder/music" \
    "$folder/merged.sqlite" 4 --jobs 2
[[ -d $folder/died-1 && -d $folder/died-3 ]]
same_content "$folder/one.sqlite" "$folder/merged.sqlite"

# Once more: everything is known.
"$sources/examples/cluster/parallel.sh" "$folder/music" "$folder/merged.sqlite" 4 --jobs 2
same_content "$folder/one.sqlite" "$folder/merged.sqlite"
