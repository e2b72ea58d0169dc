// SPDX-License-Identifier: MIT
// What `compare` reads beside audio: results, JAMS, labels, lists of beats.
#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "base/errors.h"
#include "comparison/comparisonReport.h"
#include "comparison/readBeatSheet.h"
#include "require.h"

namespace {

using namespace beatatlas::fuzz;

void check(const comparison::BeatSheet& sheet) {
    double last = -INFINITY;
    for (const comparison::SheetBeat& beat : sheet.beats) {
        require(std::isfinite(beat.seconds) && beat.seconds >= last, "times in order");
        last = beat.seconds;
    }
    if (sheet.key) require(*sheet.key >= 0 && *sheet.key < comparison::kKeys, "a key");
    if (sheet.bpm) require(*sheet.bpm > 0.0, "a tempo");
}

void compareWithItself(const comparison::BeatSheet& sheet) {
    const comparison::Comparison found = comparison::compareSheets(sheet, sheet);
    if (found.beats) require(found.beats->at(0).within20 == 1.0, "a sheet is like itself");
    require(!comparison::comparisonText({"a", sheet}, {"b", sheet}).empty(), "words");
    comparison::comparisonJson({"a", sheet}, {"b", sheet}, "");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), count);
    try {
        const comparison::BeatSheet sheet = comparison::readBeatSheet(text);
        check(sheet);
        compareWithItself(sheet);
    } catch (const base::TrackError& error) {
        require(!std::string_view(error.what()).empty(), "a reason");
    }
    return 0;
}
