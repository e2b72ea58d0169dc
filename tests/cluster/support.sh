# SPDX-License-Identifier: MIT
# For tests of examples/cluster: music to scan, and what a catalogue holds. Expects TOOL and
# MAKE_TRACK.

# make_music FOLDER: a dozen tracks of different tempo and length in folders of their own, a damaged
# one and a text
make_music() {
    local i
    for i in {1..12}; do
        mkdir -p "$1/$((i % 3))"
        "$MAKE_TRACK" "$1/$((i % 3))/track $i.wav" --seconds $((10 + 5 * i)) --tempo $((90 + 5 * i))
    done
    head -c 500000 "$1/0/track 3.wav" >"$1/0/cut.wav"
    echo "no music" >"$1/notes.txt"
}

# content CATALOGUE: what two scans of the same files have in common
content() {
    sqlite3 -readonly "$1" "
        SELECT hex(path), hex(audio_hash), size, frames, t.bpm, t.key, confidence, hex(beats), hex(zoom)
        FROM tracks t JOIN results r ON r.track_id = t.id LEFT JOIN grids g ON g.result_id = r.id
            LEFT JOIN waves w ON w.result_id = r.id ORDER BY path;
        SELECT hex(path), kind, reason FROM failures ORDER BY path;"
}

# same_content ONE OTHER
same_content() {
    [[ $(content "$1" | wc -l) -eq 14 ]] || {
        echo "$1 has not 12 tracks and 2 failures" >&2
        return 1
    }
    diff <(content "$1") <(content "$2")
}
