#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Follows a document of docs/, a guide say, line by line, as its reader would, in a folder with music.
# - A block of code whose first line is a comment that begins with a file's name becomes that file.
# - In a block "console", a line "$ ..." is a command; it prints what stands below it, in which "..."
#   stands for whatever is there, or just succeeds.
# - A block "pycon" is a conversation with Python.
# - A line "<!-- needs WHAT -->" above a block: only where that is installed. For Slurm: in
#   ./x cluster. For a fresh machine: nowhere here; CI begins with it.
# - Within a line of text, `beatatlas WORD` names a command that there is, and with more words it is
#   one that succeeds.
# A block of any other kind is a fault, unless it speaks to Sphinx alone: "{toctree}".
#   check_guide.sh SOURCES BUILD FOLDER PREFIX MAKE_TRACK CC CXX DOCUMENT
# PREFIX has an installed copy. Ends with 77 if something was left out, and says what.
set -uo pipefail
export LC_ALL=C.UTF-8
sources=$1 build=$2 folder=$3 prefix=$4 make_track=$5 cc=$6 cxx=$7 guide=$8
left_out=()

# What a reader has: a home with music, compilers, Python with the package, and the source tree.
set_scene() {
    rm -rf "$folder"
    mkdir -p "$folder/bin" "$folder/build"
    cd "$folder" || exit 1
    export HOME=$PWD PATH=$PWD/bin:$prefix/bin:$PATH
    TOOL=$prefix/bin/beatatlas
    . "$sources/tests/layout/shown_outputs.sh"
    ln -s "$cc" bin/cc
    ln -s "$cxx" bin/c++
    ln -s /usr/bin/python3 bin/python3
    ln -s "$build" build/release
    ln -s "$sources/examples" examples
    export CC=cc CXX=c++ PYTHONPATH=$sources/python PYTHONDONTWRITEBYTECODE=1
    BEATATLAS_LIBRARY_PATH=$(dirname "$(find "$prefix" -name libbeatatlas.so)")
    export BEATATLAS_LIBRARY_PATH
    unset PKG_CONFIG_PATH LD_LIBRARY_PATH BEATATLAS
    # The README's reader has installed a copy where compilers and loader look.
    if [[ $guide == *README.md ]]; then
        export PKG_CONFIG_PATH=$BEATATLAS_LIBRARY_PATH/pkgconfig LD_LIBRARY_PATH=$BEATATLAS_LIBRARY_PATH
    fi
    "$make_track" track.wav || exit 1
    if grep -q Music "$sources/docs/$guide"; then make_music || exit 1; fi
}

make_music() {
    local name tempo key
    mkdir -p Music/evening Music/morning
    while read -r name tempo key; do
        "$make_track" "Music/$name.wav" --tempo "$tempo" --key "$key" --seconds 40 || return 1
    done <<'MUSIC'
evening/ash 122 Am
evening/birch 124 Em
evening/cedar 126 Am
evening/elm 128 C
morning/fir 84 G
morning/hazel 96 D
morning/larch 126 Dm
MUSIC
    head -c 900000 Music/morning/fir.wav >Music/morning/fir-copy.wav
    echo "no music" >Music/notes.txt
}

# is_there WHAT: a program, Slurm or a module of Python
is_there() {
    case $1 in
        machine) false ;;
        slurm) [[ ${SLURM_CONF:-} ]] ;;
        parallel) command -v parallel >/dev/null ;;
        *) python3 -c "import $1" 2>/dev/null ;;
    esac
}

# write_file TEXT: as the file that its first line names
write_file() {
    local first=${1%%$'\n'*}
    if [[ $first =~ ^(#|//|/\*)\ ([A-Za-z_]+\.[a-z]+) ]]; then
        printf '%s' "$1" >"${BASH_REMATCH[2]}"
    else
        fault "$guide: nothing tries the block that begins: $first"
    fi
}

# run_command COMMAND EXPECTED
run_command() {
    if [[ ! $2 ]]; then
        succeed "$guide" "$1"
    else
        compare "$guide" "$1" "$(eval "$1" 2>&1)" "${2%$'\n'}"
    fi
}

# run_console TEXT
run_console() {
    local line command="" expected=""
    while IFS= read -r line; do
        if [[ $line == '$ '* ]]; then
            [[ $command ]] && run_command "$command" "$expected"
            command=${line#\$ } expected=""
        else
            expected+=$line$'\n'
        fi
    done < <(printf '%s' "$1")
    run_command "$command" "$expected"
}

# run_conversation TEXT: Python forgets between two blocks what it was told, so each is run behind
# those before it.
conversation=""
run_conversation() {
    conversation+=$1$'\n'
    printf '%s' "$conversation" >conversation.txt
    succeed "$guide" "python3 -m doctest -o ELLIPSIS -o IGNORE_EXCEPTION_DETAIL conversation.txt"
}

# try_block KIND TEXT
try_block() {
    case $1 in
        console) run_console "$2" ;;
        pycon) run_conversation "$2" ;;
        c | cpp | cmake | python) write_file "$2" ;;
        "{"*) ;;
        *) fault "$guide: nothing tries a block of kind '$1'" ;;
    esac
}

# run_named LINE: commands within a line of text
run_named() {
    local text words
    while IFS= read -r text; do
        read -r -a words <<<"$text"
        if is_pattern "$text"; then
            continue
        elif ((${#words[@]} == 2)) && [[ ${words[1]} != -* ]]; then
            succeed "$guide" "beatatlas help ${words[1]}"
        else
            succeed "$guide" "$text"
        fi
    done < <(grep -oE '`beatatlas [^`]*`' <<<"$1" | tr -d '`')
}

follow() {
    local line kind="" text="" needed=""
    while IFS= read -r line; do
        if [[ $kind && $line == '```' ]]; then
            if [[ $needed ]] && ! is_there "$needed"; then
                [[ $needed =~ ^(slurm|machine)$ ]] || left_out+=("$needed")
            else
                try_block "$kind" "$text"
            fi
            kind="" needed=""
        elif [[ $kind ]]; then
            text+=$line$'\n'
        elif [[ $line == '```'* ]]; then
            kind=${line#\`\`\`} text=""
            kind=${kind:-none}
            [[ $kind == pycon ]] && needed=numpy
        elif [[ $line =~ ^'<!-- needs '([a-z]+)' -->'$ ]]; then
            needed=${BASH_REMATCH[1]}
        elif [[ $line == '    '* ]]; then
            fault "$guide: nothing tries: $line"
        else
            run_named "$line"
        fi
    done <"$sources/docs/$guide"
    ((compared > 0)) || fault "$guide: shows nothing"
}

if [[ ! -d $prefix/lib/pkgconfig ]]; then
    echo "skipped: this build installs its libraries into another folder than the guides say"
    exit 77
fi
set_scene
follow
printf '%s: %d outputs compared, %d commands run\n' "$guide" "$compared" "$run"
((faults == 0)) || exit 1
if ((${#left_out[@]})); then
    echo "skipped in part, for want of: ${left_out[*]}"
    exit 77
fi
