// SPDX-License-Identifier: MIT
#include "comparison/readBeatSheet.h"

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "comparison/beatJson.h"
#include "comparison/beatText.h"

namespace comparison {

namespace {

constexpr double kLatestSeconds = 1e6;
constexpr int kLongestBar = 32;
constexpr double kUsual = 0.1;  ///< how far from the median, as a share of it
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/** Of the distances from beat to beat that are about as long as most; nothing where there are
 *  none. Times are often rounded, so that no single distance would tell. */
std::optional<double> usualBpm(const std::vector<SheetBeat>& beats) {
    std::vector<double> distances;
    for (std::size_t i = 1; i < beats.size(); ++i)
        distances.push_back(beats[i].seconds - beats[i - 1].seconds);
    if (distances.empty()) return std::nullopt;
    const auto middle = distances.begin() + static_cast<std::ptrdiff_t>(distances.size() / 2);
    std::nth_element(distances.begin(), middle, distances.end());
    const double median = *middle;
    if (!(median > 0.0)) return std::nullopt;
    double sum = 0.0;
    double count = 0.0;
    for (const double distance : distances) {
        if (std::abs(distance - median) > kUsual * median) continue;
        sum += distance;
        ++count;
    }
    return 60.0 * count / sum;
}

/** Labels may count bars, or beats from the first to the last. */
bool areNumbersOfBeats(const std::vector<SheetBeat>& beats) {
    bool rises = beats.size() > 1;
    for (std::size_t i = 0; i < beats.size(); ++i) {
        const auto& number = beats[i].number;
        if (number && (*number < 0 || *number > kLongestBar)) return false;
        rises = rises && number && (i == 0 || *number > beats[i - 1].number.value_or(0));
    }
    return !rises;
}

}  // namespace

BeatSheet finished(BeatSheet sheet) {
    for (const SheetBeat& beat : sheet.beats) {
        if (!(std::abs(beat.seconds) <= kLatestSeconds))
            throw base::TrackError("has a beat at a time that no track has");
    }
    std::stable_sort(
        sheet.beats.begin(), sheet.beats.end(),
        [](const SheetBeat& one, const SheetBeat& other) { return one.seconds < other.seconds; });
    if (!areNumbersOfBeats(sheet.beats)) {
        for (SheetBeat& beat : sheet.beats) beat.number.reset();
    }
    if (!sheet.bpm) sheet.bpm = usualBpm(sheet.beats);
    return sheet;
}

bool isText(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) {
        return byte >= 0x20 || byte == '\t' || byte == '\n' || byte == '\r' || byte == '\f';
    });
}

BeatSheet readBeatSheet(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    const std::size_t begin = text.find_first_not_of(" \t\r\n\f");
    if (begin == std::string_view::npos) throw base::TrackError("is empty");
    return finished(text[begin] == '{' ? readBeatJson(text) : readBeatText(text));
}

}  // namespace comparison
