// SPDX-License-Identifier: MIT
// Structures of the interface grow only at their end. A host states the size it knows: fields it
// does not know keep their defaults, and fields this version does not know must be 0.
#include "track/arguments.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace beatatlas::track::inner {

namespace {

// Where each field ends, which is where the next one begins. A structure is read up to the last
// field that lies wholly within the host's size.
constexpr std::size_t kOptionEnds[] = {
    offsetof(BA_TrackOptions, tempo),         offsetof(BA_TrackOptions, section_beats),
    offsetof(BA_TrackOptions, range_seconds), offsetof(BA_TrackOptions, wants_key),
    offsetof(BA_TrackOptions, wants_waves),   offsetof(BA_TrackOptions, threads),
    offsetof(BA_TrackOptions, reserved),      offsetof(BA_TrackOptions, progress),
    offsetof(BA_TrackOptions, progress_host), offsetof(BA_TrackOptions, lowest_bpm),
    offsetof(BA_TrackOptions, highest_bpm),   offsetof(BA_TrackOptions, beats_per_bar),
    offsetof(BA_TrackOptions, reserved_bar),  offsetof(BA_TrackOptions, wants_session_key),
    offsetof(BA_TrackOptions, reserved_key),  sizeof(BA_TrackOptions)};
constexpr std::size_t kSourceEnds[] = {offsetof(BA_TrackSource, host),
                                       offsetof(BA_TrackSource, open),
                                       offsetof(BA_TrackSource, read),
                                       offsetof(BA_TrackSource, close),
                                       offsetof(BA_TrackSource, fewest_passes),
                                       offsetof(BA_TrackSource, reserved),
                                       sizeof(BA_TrackSource)};

template <std::size_t count>
std::size_t wholeFields(const std::size_t (&ends)[count], std::size_t size) {
    std::size_t whole = 0;
    for (const std::size_t end : ends)
        if (end <= size) whole = end;
    return whole;
}

bool isZero(const unsigned char* bytes, std::size_t count) {
    return std::all_of(bytes, bytes + count, [](unsigned char byte) { return byte == 0; });
}

/** Replaces the defaults by the fields that the host knows. */
template <class Structure, std::size_t count>
bool readStructure(const Structure* hosts, const std::size_t (&ends)[count], Structure& own) {
    std::size_t size = 0;
    std::memcpy(&size, hosts, sizeof size);
    if (size < sizeof size) return false;
    if (size > sizeof own) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(hosts);
        if (!isZero(bytes + sizeof own, size - sizeof own)) return false;
    }
    std::memcpy(&own, hosts, wholeFields(ends, size));
    own.size = sizeof own;
    return true;
}

constexpr double kLowestBpm = 20.0;
constexpr double kHighestBpm = 1000.0;

/** No range, or one wide enough that doubling or halving brings every tempo into it. */
bool isTempoRange(double lowest, double highest) {
    if (lowest == 0.0 && highest == 0.0) return true;
    return lowest >= kLowestBpm && highest <= kHighestBpm && highest >= 2.0 * lowest;
}

bool areInRange(const BA_TrackOptions& options) {
    const std::int32_t perBar = options.beats_per_bar;
    return options.tempo >= BA_TRACK_TEMPO_CONSTANT && options.tempo <= BA_TRACK_TEMPO_AUTO &&
           options.section_beats > 0 && options.range_seconds >= 0.0 && options.threads > 0 &&
           options.reserved == 0 && isTempoRange(options.lowest_bpm, options.highest_bpm) &&
           (perBar == 0 || perBar == 3 || perBar == 4) && options.reserved_bar == 0 &&
           options.reserved_key == 0;
}

}  // namespace

BA_TrackOptions defaultOptions() {
    BA_TrackOptions options{};
    options.size = sizeof options;
    options.tempo = BA_TRACK_TEMPO_AUTO;
    options.section_beats = 32;
    options.wants_key = 1;
    options.wants_waves = 1;
    options.threads = 1;
    return options;
}

void writeOptions(const BA_TrackOptions& options, void* hosts, std::size_t size) {
    std::memset(hosts, 0, size);
    std::memcpy(hosts, &options, wholeFields(kOptionEnds, size));
    std::memcpy(hosts, &size, sizeof size);
}

bool readOptions(const BA_TrackOptions* hosts, BA_TrackOptions& options) {
    options = defaultOptions();
    return hosts == nullptr || (readStructure(hosts, kOptionEnds, options) && areInRange(options));
}

bool readSource(const BA_TrackSource* hosts, BA_TrackSource& source) {
    source = {};
    return hosts != nullptr && readStructure(hosts, kSourceEnds, source) &&
           source.open != nullptr && source.read != nullptr && source.close != nullptr &&
           source.reserved == 0;
}

bool isTrack(std::int32_t rate, std::int64_t frames) {
    return (rate == 44100 || rate == 48000) && frames > 0 &&
           frames <= std::numeric_limits<std::int32_t>::max();
}

}  // namespace beatatlas::track::inner
