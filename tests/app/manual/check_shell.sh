#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check_shell.sh bash|zsh|fish MADE PROGRAM FOLDER
# Starts the shell, has it complete command lines in FOLDER, and compares what it offers.
set -euo pipefail
shell=$1 made=$2 program=$3 folder=$4
source "$(dirname "$0")/commands.sh"
here=$(cd "$(dirname "$0")" && pwd)
if ! command -v "$shell" >/dev/null; then
    echo "There is no $shell here: not tested"
    exit 77
fi
rm -rf "$folder"
mkdir -p "$folder/files/music" "$folder/files/music:live" "$folder/home"
cd "$folder/files"
# Shells write into the home of whom they complete for.
export HOME=$folder/home
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME
touch one.mp3 two.FLAC "with space.wav" note.txt list.m3u8 songs.sqlite own.ini b:side.ogg music/deep.mp3

# What a shell offers for each line of `lines`, as lines "LINE<tab>WORD" in `offered`.
ask() {
    case $shell in
    bash) bash --norc "$here/offer.bash" "$made/beatatlas.bash" ;;
    zsh) zsh -f "$here/offer.zsh" "$made" ;;
    fish) fish --no-config "$here/offer.fish" "$made/beatatlas.fish" ;;
    esac <"$folder/lines" >"$folder/offered"
}

# Each line of the command line, the words that must be offered, and behind "not" those that must not.
expectations() {
    cat <<'END'
beatatlas an|analyze|not draw --help
beatatlas s|scan show serve|not list
beatatlas help s|scan show serve|not --tempo
beatatlas analyze --key|--key-notation|not --tempo
beatatlas analyze --tempo |auto constant varied simple off|not one.mp3 --json
beatatlas analyze --tempo s|simple|not auto
beatatlas analyze --key-notation |standard sharps flats camelot openkey german solfege|not one.mp3
beatatlas tag --key-notation |standard sharps flats camelot openkey|not german solfege
beatatlas export --to m|midi matroska-chapters m3u8|not json
beatatlas export -t w|waveform waveform-json|not midi
beatatlas list --key 12|12A 12B|not 11A
beatatlas list --sort |path artist title bpm key length confidence added|not --json
beatatlas analyze --beats-per-bar |3 4|not one.mp3
beatatlas draw --theme |dark light|not one.mp3
beatatlas analyze |one.mp3 two.FLAC music/|not note.txt list.m3u8
beatatlas analyze o|one.mp3|not own.ini
beatatlas analyze t|two.FLAC|not note.txt
beatatlas analyze m|music/|not list.m3u8
beatatlas analyze music/|music/deep.mp3|not one.mp3
beatatlas analyze l|list.m3u8|not one.mp3
beatatlas analyze n|note.txt|not one.mp3
beatatlas scan l|list.m3u8|not one.mp3
beatatlas analyze --json o|one.mp3|not own.ini
beatatlas analyze -- o|one.mp3|not own.ini
beatatlas analyze one.mp3 t|two.FLAC|not note.txt
beatatlas list --catalogue s|songs.sqlite|not two.FLAC
beatatlas merge s|songs.sqlite|not one.mp3
beatatlas merge -o s|songs.sqlite|not one.mp3
beatatlas analyze --config o|own.ini|not one.mp3
beatatlas draw -d |music/|not one.mp3
beatatlas draw --directory |music/|not one.mp3
beatatlas cut one.mp3 --output n|note.txt|not one.mp3
beatatlas compare n|note.txt|not one.mp3
beatatlas analyze -- -||not --json -q
END
}

expectWords() {
    local line offered expected refused word
    while IFS='|' read -r line expected refused; do
        offered=" $(awk -F'\t' -v line="$line" '$1 == line { printf "%s ", $2 }' "$folder/offered")"
        for word in $expected; do
            [[ $offered == *" $word "* ]] || { echo "'$line' lacks $word, has:$offered"; return 1; }
        done
        for word in ${refused#not}; do
            [[ $offered != *" $word "* ]] || { echo "'$line' offers $word"; return 1; }
        done
    done
}

everyOption() {
    local command
    echo "beatatlas |$(commandsOf "$program" | tr '\n' ' ')|"
    for command in $(commandsOf "$program"); do
        echo "beatatlas $command --|$(optionsOf "$program" "$command" | grep -- -- | tr '\n' ' ')|"
    done
}

{ expectations; everyOption; } >"$folder/expected"
cut -d'|' -f1 "$folder/expected" >"$folder/lines"
ask
expectWords <"$folder/expected"
echo "$(wc -l <"$folder/lines") command lines, $(wc -l <"$folder/offered") words offered"
