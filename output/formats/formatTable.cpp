// SPDX-License-Identifier: MIT
#include <utility>

#include "output/formats/AudacityLabels.h"
#include "output/formats/BeatsCsv.h"
#include "output/formats/Chapters.h"
#include "output/formats/ExportFormat.h"
#include "output/formats/JamsExport.h"
#include "output/formats/JsonExport.h"
#include "output/formats/MidiExport.h"
#include "output/formats/PeaksExport.h"
#include "output/formats/Playlist.h"
#include "output/formats/TracksCsv.h"

namespace output {

namespace {

template <class Writer>
std::unique_ptr<ExportWriter> make(const ExportOptions& options, DocumentSink write) {
    return std::make_unique<Writer>(options, std::move(write));
}

template <AudacityLabels::Kind kind>
std::unique_ptr<ExportWriter> makeLabels(const ExportOptions&, DocumentSink write) {
    return std::make_unique<AudacityLabels>(kind, std::move(write));
}

}  // namespace

const std::vector<ExportFormat>& exportFormats() {
    using Kind = AudacityLabels::Kind;
    using Tells = ExportFormat::Tells;
    constexpr bool kOne = false;
    constexpr bool kMany = true;
    static const std::vector<ExportFormat> formats = {
        {"json", ".json", "the document of analyze --json", Tells::everything, kMany,
         make<JsonExport>},
        {"jsonl", ".jsonl", "the same, a line of its own for each track", Tells::everything, kMany,
         make<JsonLinesExport>},
        {"csv", ".csv", "a table of all beats", Tells::beatsAlone, kMany, make<BeatsCsv>},
        {"csv-tracks", ".csv", "a table of tracks, a line each", Tells::results, kMany,
         make<TracksCsv>},
        {"jams", ".jams", "beats, tempo, keys and sections as JAMS annotations", Tells::results,
         kOne, make<JamsExport>},
        {"audacity-beats", ".txt", "Audacity labels: beats as bar.beat", Tells::beatsAlone, kOne,
         makeLabels<Kind::beats>},
        {"audacity-bars", ".txt", "Audacity labels: downbeats by number", Tells::beatsAlone, kOne,
         makeLabels<Kind::bars>},
        {"audacity-numbers", ".txt", "Audacity labels: beats by their number in the bar",
         Tells::beatsAlone, kOne, makeLabels<Kind::numbers>},
        {"midi", ".mid", "a tempo map with a click track", Tells::beatsAlone, kOne,
         make<MidiExport>},
        {"ffmetadata", ".ffmetadata", "chapters for FFmpeg", Tells::results, kOne,
         make<FfmpegMetadata>},
        {"matroska-chapters", ".xml", "chapters for Matroska", Tells::results, kOne,
         make<MatroskaChapters>},
        {"waveform", ".dat", "peaks for audiowaveform's readers, binary", Tells::peaksAlone, kOne,
         make<PeaksBinary>},
        {"waveform-json", ".json", "the same as JSON", Tells::peaksAlone, kOne, make<PeaksJson>},
        {"m3u8", ".m3u8", "a playlist, by key and tempo", Tells::results, kMany, make<Playlist>},
    };
    return formats;
}

}  // namespace output
