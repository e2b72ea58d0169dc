// SPDX-License-Identifier: MIT
#include "peakss/grid/BeatListDump.h"

#include <algorithm>

namespace peakss {

namespace {

constexpr const char* kDoubleLine =
    "============================================================\r\n";

}  // namespace

void printBeatList(const BeatList& list, std::FILE* stream) {
    std::FILE* const target = stream != nullptr ? stream : stdout;
    for (const BeatInfo& beat : list) {
        const float bpm = 60000.0F / beat.interval;
        std::fprintf(target, "%d\t%f\t%f\t%d\t%d\n", beat.group, static_cast<double>(bpm),
                     static_cast<double>(beat.phase), beat.pos, beat.band);
    }
}

void BeatListDump::banner() const {
    if (stream_ == nullptr) return;
    std::fputs(kDoubleLine, stream_);
    std::fputs("ビート情報解析データ\r\n", stream_);
    std::fputs(kDoubleLine, stream_);
}

void BeatListDump::section(const char* header, const BeatList& list) const {
    // The list printer takes a null stream for standard output.
    if (stream_ == nullptr) return;
    std::fprintf(stream_, "%s\r\n", header);
    printBeatList(list, stream_);
    std::fputs("\r\n\r\n", stream_);
}

void BeatListDump::representativeTempo(float bpm) const {
    if (stream_ == nullptr) return;
    std::fprintf(stream_, "[ 代表BPM ]\r\n%f\r\n\r\n\r\n", static_cast<double>(bpm));
}

void BeatListDump::bandCounts(const BeatList& grid) const {
    if (stream_ == nullptr) return;
    std::fputs("[ バンド毎の件数 ]\r\n", stream_);
    for (int band = 0; band < kDetectorBands; ++band) {
        const auto isOfBand = [band](const BeatInfo& beat) { return beat.band == band; };
        const auto count = std::count_if(grid.begin(), grid.end(), isOfBand);
        std::fprintf(stream_, "band%d : %d\r\n", band, static_cast<int>(count));
    }
    std::fputs("\r\n\r\n", stream_);
}

void BeatListDump::bandOffsets(const std::vector<BandOffsets>& segmentOffsets) const {
    if (stream_ == nullptr) return;
    std::fputs("[ バンド毎のオフセット ]\r\n", stream_);
    int segment = 0;
    for (const BandOffsets& offsetsMs : segmentOffsets) {
        std::fprintf(stream_, "区間%d\r\n", segment++);
        const char* separator = "";
        for (const double offset : offsetsMs) {
            std::fprintf(stream_, "%s%f", separator, offset);
            separator = "\t";
        }
        std::fputs("\r\n", stream_);
    }
    std::fputs("\r\n", stream_);
}

}  // namespace peakss
