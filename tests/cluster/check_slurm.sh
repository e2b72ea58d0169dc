#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# examples/cluster/submit.sh on a Slurm of one node, which is started for this test alone: a task
# that is killed runs again, and the merged catalogue is that of one scan.
# Then the guide to clusters is followed there.
#   check_slurm.sh SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL
set -euo pipefail
export LC_ALL=C.UTF-8
sources=$1 folder=$2 MAKE_TRACK=$3 TOOL=$4
. "$sources/tests/cluster/support.sh"
. "$sources/tests/cluster/private_slurm.sh"

rm -rf "$folder"
mkdir -p "$folder/music" "$folder/logs"
make_music "$folder/music"
"$TOOL" scan --quiet --catalogue "$folder/one.sqlite" "$folder/music" || true

trap stop_slurm EXIT
start_slurm "$folder/slurm"

# The first run of each task ends by a signal, if it is not quicker.
cat >"$folder/dying" <<TRY
#!/usr/bin/env bash
if [[ \$1 == scan ]] && mkdir "$folder/died-\$SLURM_ARRAY_TASK_ID" 2>/dev/null; then
    "$TOOL" "\$@" &
    sleep 0.2
    kill -KILL \$! 2>/dev/null
    wait \$!
    exit
fi
exec "$TOOL" "\$@"
TRY
chmod +x "$folder/dying"
last=$(BEATATLAS=$folder/dying "$sources/examples/cluster/submit.sh" "$folder/music" \
    "$folder/merged.sqlite" 4 --output="$folder/logs/%A_%a")

ended() { [[ $(scontrol --oneliner show job "$last") =~ JobState=(COMPLETED|FAILED|CANCELLED) ]]; }
for ((i = 0; i < 1200; ++i)); do
    if ended; then break; fi
    sleep 0.1
done
scontrol --oneliner show job "$last" | grep -q JobState=COMPLETED
scontrol --oneliner show job | grep -q 'Restarts=1 '
same_content "$folder/one.sqlite" "$folder/merged.sqlite"
echo "the task that was killed ran again, and the merged catalogue is that of one scan"

build=${TOOL%/app/beatatlas}
cmake --install "$build" --prefix "$folder/installed" >/dev/null
"$sources/tests/docs/check_guide.sh" "$sources" "$build" "$folder/guide" "$folder/installed" \
    "$MAKE_TRACK" "$(command -v cc)" "$(command -v c++)" guides/cluster.md ||
    (($? == 77))
