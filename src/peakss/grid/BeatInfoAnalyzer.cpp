// SPDX-License-Identifier: MIT
// From raw candidates of six detection bands, with gaps, doublings and stray tempi, to one regular
// grid:
//   constant tempo   findTrackInterval, dropOtherTempi; the whole track is one segment
//   varied tempo     dropStrayGroups, dropShortRuns, findSegments
//   both             refineSegments, dropCloseCandidates, findMainTempo, adjustSegments, layGrid,
//                    gapCorrectConstant or gapCorrectVaried, numberBars, trimToTrack
#include "peakss/grid/BeatInfoAnalyzer.h"

#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

#include "peakss/grid/BandOffsets.h"
#include "peakss/grid/BeatListDump.h"
#include "peakss/grid/adjustSegments.h"
#include "peakss/grid/constantTempo.h"
#include "peakss/grid/dropCloseCandidates.h"
#include "peakss/grid/dropShortRuns.h"
#include "peakss/grid/dropStrayGroups.h"
#include "peakss/grid/findSegments.h"
#include "peakss/grid/gapCorrectConstant.h"
#include "peakss/grid/gapCorrectVaried.h"
#include "peakss/grid/layGrid.h"
#include "peakss/grid/numberBars.h"
#include "peakss/grid/refineSegments.h"
#include "peakss/grid/segments.h"

namespace peakss {

namespace {

/** The lines on standard output that show how far an analysis is; none when they are not wanted. */
class ProgressLines {
public:
    explicit ProgressLines(bool areWanted) : areWanted_(areWanted) {}

    void line(const char* text) const {
        if (areWanted_) std::puts(text);
    }
    void list(const BeatList& beats) const {
        if (areWanted_) printBeatList(beats, nullptr);
    }

private:
    bool areWanted_;
};

// One segment for the whole track; none when the track has no tempo.
std::optional<BeatList> constantTempoSegments(BeatList& raw, int length, const BeatListDump& dump,
                                              const ProgressLines& progress) {
    const float interval = findTrackInterval(raw, length);
    if (interval == 0.0F) return std::nullopt;
    progress.line("BPMの一致しない値を消去します");
    dropOtherTempi(raw, interval);
    dump.section("[ BPMの一致しない値削除後のデータ ]", raw);
    if (raw.empty()) return std::nullopt;
    return BeatList{segmentFrom(raw.front(), interval)};
}

BeatList variedTempoSegments(BeatList& raw, int samplingRate, const BeatListDump& dump,
                             const ProgressLines& progress) {
    dropStrayGroups(raw, measureGroupTempos(raw));
    dump.section("[ 連続しないBPM区間削除後のデータ ]", raw);
    progress.line("8個以上連続しない値を消去します");
    dropShortRuns(raw);
    dump.section("[ 8個以上連続しない値削除後のデータ ]", raw);
    return findSegments(raw, samplingRate);
}

// Makes the tempi of the segments exact and thins out the candidates. Returns the main BPM.
float settleSegments(BeatList& segments, BeatList& raw, int length, int samplingRate,
                     const BeatListDump& dump) {
    refineSegments(segments, raw, length);
    dropCloseCandidates(raw, segments, length, samplingRate);
    dump.section("[ 近い値調整後のデータ ]", raw);
    const float bpm = findMainTempo(segments, length);
    dump.representativeTempo(bpm);
    dump.section("[ アジャスト前区間情報 ]", segments);
    return bpm;
}

// Fits the segments to the candidates and lays the grid over them.
LaidGrid laySegments(BeatList& segments, const std::vector<BandOffsets>& offsetsMs,
                     const BeatList& raw, const GridPhrase& phrase, int length, int samplingRate,
                     const BeatListDump& dump) {
    adjustSegments(segments, raw, length, samplingRate);
    LaidGrid grid = layGrid(segments, offsetsMs, raw, phrase, length, samplingRate);
    dump.section("[ アジャスト後区間情報 ]", segments);
    dump.section("[ 区間をBPM値で分割したデータ ]", grid.beats);
    return grid;
}

// Mends the gaps of the grid. Returns the position of a beat that begins a bar.
std::int32_t mendGaps(LaidGrid& grid, bool varied, int length, int samplingRate) {
    if (varied) {
        gapCorrectVaried(grid.beats);
        return grid.firstOrigin;
    }
    gapCorrectConstant(grid.beats, length, grid.firstAnchor, grid.lastAnchor, samplingRate);
    return firstAnchorPosition(grid.beats);
}

// The BPM of a grid that is even from its first beat on.
float gridTempo(const BeatList& grid) {
    return grid.empty() ? 0.0F : 60000.0F / grid.front().interval;
}

}  // namespace

float BeatInfoAnalyzer::analyze(BeatInfoAnalyzeInfo* info, BeatList& out, int length, int barBeats,
                                int frontBeats, int backBeats, bool varied) {
    if (info == nullptr || info->beatList == nullptr) return 0.0F;
    BeatList& raw = *info->beatList;
    const BeatListDump dump(debugStream_);
    const ProgressLines progress(!isQuiet_);
    progress.line("BeatInfoAnalyzer::analyze() 拍情報の解析開始");
    dump.banner();
    dump.section("[ 選出生データ ]", raw);
    if (raw.empty()) return 0.0F;

    std::optional<BeatList> found = varied ? variedTempoSegments(raw, samplingRate_, dump, progress)
                                           : constantTempoSegments(raw, length, dump, progress);
    if (!found) return 0.0F;
    BeatList& segments = *found;
    float bpm = settleSegments(segments, raw, length, samplingRate_, dump);
    if (segments.empty()) return 0.0F;

    const std::vector<BandOffsets> offsetsMs(segments.size(), kDetectorOffsetsMs);
    LaidGrid grid = laySegments(segments, offsetsMs, raw, {barBeats, frontBeats, backBeats}, length,
                                samplingRate_, dump);
    const std::int32_t reference = mendGaps(grid, varied, length, samplingRate_);
    if (!varied) bpm = gridTempo(grid.beats);
    numberBars(grid.beats, reference, barBeats);
    trimToTrack(grid.beats, length);
    dump.section("[ 位置補正後のデータ ]", grid.beats);
    dump.bandCounts(grid.beats);
    dump.bandOffsets(offsetsMs);

    progress.line("区間情報");
    progress.list(segments);
    progress.line("BeatInfoAnalyzer::analyze() 拍情報の解析終了");
    out = std::move(grid.beats);
    return bpm;
}

}  // namespace peakss
