#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# What the documents show of the program is what it prints. In a block that is set off by four
# spaces, a line "$ beatatlas ..." is a command and the lines below it are its output, in which
# "..." stands for whatever is there; a line "beatatlas ..." is a command that succeeds, unless it
# names what is to be put in. Commands within a line of text that name a file succeed, too.
#   check_examples.sh SOURCES FOLDER PROGRAM-THAT-MAKES-A-TRACK TOOL
set -uo pipefail
export LC_ALL=C.UTF-8
sources=$1 folder=$2 make_track=$3 TOOL=$4

# The names of files in the documents; what a file is, is told by its content.
rm -rf "$folder"
mkdir -p "$folder"
cd "$folder" || exit 1
. "$sources/tests/layout/shown_outputs.sh"
"$make_track" track.wav || exit 1
for name in track.flac song.mp3 other.flac -intro.mp3; do cp -- track.wav "$name"; done
cp track.wav a.wav
: >b.mp3
awk 'BEGIN { for (i = 0; i < 252; ++i) printf "%.3f\n", 0.2 + i * 60 / 126 }' >taps.txt
check() {
    local document=$1 line command="" expected="" text
    while IFS= read -r line || [[ $line ]]; do
        if [[ $command && $line == "    "* && $line != '    $ '* ]]; then
            expected+=${expected:+$'\n'}${line#    }
            continue
        fi
        [[ $command ]] && compare "$document" "$command" "$(eval "$command" 2>/dev/null)" "$expected"
        command="" expected=""
        if [[ $line == '    $ beatatlas '* ]]; then
            command=${line#*\$ }
        elif [[ $line =~ ^'    '(build/release/app/)?(beatatlas .*)$ ]]; then
            text=${BASH_REMATCH[2]}
            is_pattern "$text" || succeed "$document" "$text"
        else
            while IFS= read -r text; do
                [[ $text =~ \.(wav|mp3|flac)$ ]] && ! is_pattern "$text" &&
                    succeed "$document" "$text"
            done < <(grep -oE '`beatatlas [^`]*`' <<<"$line" | tr -d '`')
        fi
    done < <(cat "$sources/$document"; echo)
}

for document in docs/tool.md docs/json.md docs/formats.md docs/embedding.md; do check "$document"; done
printf '%d outputs compared, %d commands run\n' "$compared" "$run"
((compared >= 5 && run >= 8)) || fault "The documents show fewer commands than they did"
exit $((faults > 0))
