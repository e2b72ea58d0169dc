// SPDX-License-Identifier: MIT
// From raw candidates of six detection bands, with gaps, doublings and stray tempi, to one regular grid:
//   constant tempo   find the track's tempo, drop the candidates of other tempi, take all of it as one segment
//   varied tempo     drop the candidates that keep no tempo, split the rest where the tempo changes
//   both             measure each segment's tempo, join equal neighbours, thin out candidates of one beat,
//                    fit each segment to its candidates, lay the grid, correct its gaps, number the bars
#include "peakss/grid/BeatInfoAnalyzer.h"

#include <optional>
#include <utility>
#include <vector>

#include "peakss/grid/BandOffsets.h"
#include "peakss/grid/BeatListDump.h"
#include "peakss/grid/ProgressLines.h"
#include "peakss/grid/barNumbering.h"
#include "peakss/grid/closeCandidateCleanup.h"
#include "peakss/grid/discontinuousGroupRemoval.h"
#include "peakss/grid/gapCorrectConstant.h"
#include "peakss/grid/gapCorrectVaried.h"
#include "peakss/grid/gridLaying.h"
#include "peakss/grid/groupTempoTable.h"
#include "peakss/grid/representativeInterval.h"
#include "peakss/grid/representativeTempo.h"
#include "peakss/grid/segmentAdjustment.h"
#include "peakss/grid/segmentRefinement.h"
#include "peakss/grid/segmentSearch.h"
#include "peakss/grid/shortRunRemoval.h"
#include "peakss/grid/tempoMismatchRemoval.h"
#include "peakss/grid/tempoSegments.h"

namespace peakss {

namespace {

// One segment for the whole track; none when the track has no tempo.
std::optional<BeatList> constantTempoSegments(BeatList& raw, int length, const BeatListDump& dump,
                                              const ProgressLines& progress) {
    const float interval = representativeInterval(raw, length);
    if (interval == 0.0F) return std::nullopt;
    progress.line("BPMの一致しない値を消去します");
    tempoMismatchRemoval(raw, interval);
    dump.section("[ BPMの一致しない値削除後のデータ ]", raw);
    if (raw.empty()) return std::nullopt;
    return BeatList{segmentFrom(raw.front(), interval)};
}

BeatList variedTempoSegments(BeatList& raw, int samplingRate, const BeatListDump& dump,
                             const ProgressLines& progress) {
    discontinuousGroupRemoval(raw, groupTempoTable(raw));
    dump.section("[ 連続しないBPM区間削除後のデータ ]", raw);
    progress.line("8個以上連続しない値を消去します");
    shortRunRemoval(raw);
    dump.section("[ 8個以上連続しない値削除後のデータ ]", raw);
    return segmentSearch(raw, samplingRate);
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

    segmentRefinement(segments, raw, length);
    const std::vector<BandOffsets> offsetsMs(segments.size(), kDetectorOffsetsMs);
    closeCandidateCleanup(raw, segments, length, samplingRate_);
    dump.section("[ 近い値調整後のデータ ]", raw);
    float bpm = representativeTempo(segments, length);
    dump.representativeTempo(bpm);
    dump.section("[ アジャスト前区間情報 ]", segments);
    if (segments.empty()) return 0.0F;

    segmentAdjustment(segments, raw, length, samplingRate_);
    LaidGrid grid = gridLaying(segments, offsetsMs, raw, {barBeats, frontBeats, backBeats}, length,
                               samplingRate_);
    dump.section("[ アジャスト後区間情報 ]", segments);
    dump.section("[ 区間をBPM値で分割したデータ ]", grid.beats);

    std::int32_t reference = grid.firstOrigin;
    if (varied) {
        gapCorrectVaried(grid.beats);
    } else {
        gapCorrectConstant(grid.beats, length, grid.firstAnchor, grid.lastAnchor, samplingRate_);
        bpm = gridTempo(grid.beats);
        reference = firstAnchorPosition(grid.beats);
    }
    barNumbering(grid.beats, reference, barBeats);
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
