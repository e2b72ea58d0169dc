// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace base {

/** A track of a catalogue as lists show it, with corrections. */
struct ListedTrack {
    /** Its number in the catalogue. */
    std::int64_t id = 0;
    std::string path;
    std::string artist;
    std::string title;
    double seconds = 0.0;
    std::optional<double> bpm;
    /** 0 to 23. */
    std::optional<int> key;
    /** Of tempo or key, whichever is less certain, 0 to 1. */
    std::optional<double> confidence;
    /** What that confidence is of: nothing where there is none. */
    enum class Part { tempo, key };
    std::optional<Part> leastSure;
    bool isCorrected = false;
    /** The file is no longer where it was. */
    bool isGone = false;
};

/** A file that could not be analysed. */
struct ListedFailure {
    std::string path;
    /** "damaged", "time-limit" … */
    std::string kind;
    /** For people. */
    std::string reason;
    std::int64_t attempts = 0;
};

}  // namespace base
