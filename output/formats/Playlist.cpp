// SPDX-License-Identifier: MIT
#include "output/formats/Playlist.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <tuple>

#include <fmt/format.h>

#include "base/displayName.h"
#include "output/formats/trackNames.h"
#include "output/textFormat.h"

namespace output {

namespace {

constexpr int kKeyless = 1000;

/** 8A is 16, 8B 17. */
int placeOf(const std::optional<beatatlas::track::Key>& key) {
    if (!key) return kKeyless;
    const KeyName name(key->best());
    return 2 * std::stoi(name.camelot()) + (name.isMinor() ? 0 : 1);
}

/** A line of a playlist holds neither line breaks nor bytes that are no UTF-8: such a name is
 *  written as an address. */
std::string placeInPlaylist(const std::string& path) {
    std::string whole = std::filesystem::absolute(path).lexically_normal().string();
    if (base::isUtf8(whole) && whole.find_first_of("\r\n") == std::string::npos) return whole;
    return fileAddress(whole);
}

}  // namespace

void Playlist::add(const TrackReport& report, const Peaks*) {
    // What came in by standard input is nowhere to be played from.
    if (report.path == "-") return;
    const beatatlas::track::TrackResult& analysis = report.analysis;
    const std::int64_t seconds = std::llround(analysis.seconds());
    entries_.push_back({placeOf(analysis.key), analysis.bpm.value_or(0.0),
                        fmt::format("#EXTINF:{},{}\n{}\n", seconds, trackName(report),
                                    placeInPlaylist(report.path))});
}

void Playlist::end() {
    std::stable_sort(entries_.begin(), entries_.end(), [](const Entry& one, const Entry& other) {
        return std::tie(one.place, one.bpm) < std::tie(other.place, other.bpm);
    });
    write_("#EXTM3U\n");
    for (const Entry& entry : entries_) write_(entry.lines);
}

}  // namespace output
