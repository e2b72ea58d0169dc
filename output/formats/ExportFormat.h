// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "output/formats/ExportWriter.h"

namespace output {

/** A format in which results leave the program. */
struct ExportFormat {
    /** What of a track the format tells. */
    enum class Tells {
        everything,  ///< the session's key too
        results,     ///< tempo, beats and key
        beatsAlone,
        peaksAlone,  ///< nothing but the sound itself
    };

    std::string name;
    std::string ending;  ///< of its files, with the dot
    std::string description;
    Tells tells = Tells::results;
    bool holdsManyTracks = false;  ///< one document does for all of them
    std::unique_ptr<ExportWriter> (*make)(const ExportOptions& options, DocumentSink write);
};

/** Every format there is. */
const std::vector<ExportFormat>& exportFormats();

}  // namespace output
