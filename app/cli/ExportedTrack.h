// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "output/TrackReport.h"
#include "output/formats/Peaks.h"

namespace app {

/** What of a track goes into a document. */
struct ExportedTrack : output::TrackReport {
    std::optional<output::Peaks> peaks;

    const output::Peaks* peaksOrNull() const { return peaks ? &*peaks : nullptr; }
};

/** Takes tracks one by one, numbered from 0. */
struct TrackReceiver {
    /** Before the work on a track. May throw TrackError, with which the track fails. */
    std::function<void(std::size_t number)> prepare;
    std::function<void(std::size_t number, ExportedTrack track)> take;
    /** In place of take() when the track failed. */
    std::function<void(const std::string& path, const std::string& reason)> takeFailure;
};

}  // namespace app
