// SPDX-License-Identifier: MIT
// The C interface to files: checks arguments and lets no exception out.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "beatatlas/media.h"
#include "media/FileAnalysis.h"
#include "media/ffmpeg.h"
#include "media/library/SampleTrack.h"

struct BA_File {
    base::TrackSource source;
    beatatlas::track::TrackHandle track;
    std::string reason;
};

namespace {

using beatatlas::track::Options;
using beatatlas::track::TempoMode;

/** Thrown through the analysis when the host asks to stop. */
struct StoppedByHost {};

constexpr std::int64_t kUsualMemory = std::int64_t{1} << 30;

void* refuseToOpen(void*) {
    return nullptr;
}

/** Asks the analysis itself: with good options it gets as far as opening the source. */
bool areGood(const BA_TrackOptions* options) {
    const auto read = [](void*, void*, float*, float*, int64_t) { return int64_t{0}; };
    const auto close = [](void*, void*) {};
    const BA_TrackSource none{sizeof(BA_TrackSource), nullptr, refuseToOpen, read, close, 1, 0};
    BA_Track* track = nullptr;
    return BA_TrackAnalyze(options, 44100, 1, &none, &track) == BA_TRACK_STOPPED;
}

/** The host's options, with the defaults of those that it does not know. */
BA_TrackOptions wholeOptions(const BA_TrackOptions* hosts) {
    BA_TrackOptions own;
    BA_TrackOptionsInit(&own, sizeof own);
    if (hosts != nullptr) std::memcpy(&own, hosts, std::min(hosts->size, sizeof own));
    return own;
}

Options toOptions(const BA_TrackOptions& plain) {
    Options options;
    options.tempo = static_cast<TempoMode>(plain.tempo);
    options.sectionBeats = plain.section_beats;
    options.rangeSeconds = plain.range_seconds;
    options.wantsKey = plain.wants_key != 0;
    options.wantsSessionKey = plain.wants_session_key != 0;
    options.wantsWaves = plain.wants_waves != 0;
    options.lowestBpm = plain.lowest_bpm;
    options.highestBpm = plain.highest_bpm;
    options.beatsPerBar = plain.beats_per_bar;
    options.threads = plain.threads;
    return options;
}

std::function<void(double)> progressOf(const BA_TrackOptions& plain) {
    if (plain.progress == nullptr) return nullptr;
    return [call = plain.progress, host = plain.progress_host](double fraction) {
        if (call(host, fraction) != 0) throw StoppedByHost();
    };
}

bool areGood(const BA_FileOptions& options) {
    return options.memory_bytes > 0 && options.reserved == 0;
}

/** @return false for options that this version does not know */
bool readOptions(const BA_FileOptions* hosts, BA_FileOptions& own) {
    BA_FileOptionsInit(&own, sizeof own);
    if (hosts == nullptr) return true;
    if (hosts->size < sizeof hosts->size) return false;
    if (hosts->size > sizeof own) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(hosts);
        const auto isZero = [](unsigned char byte) { return byte == 0; };
        if (!std::all_of(bytes + sizeof own, bytes + hosts->size, isZero)) return false;
    }
    std::memcpy(&own, hosts, std::min(hosts->size, sizeof own));
    return areGood(own);
}

int statusOf(base::TrackError::Kind kind) {
    switch (kind) {
    case base::TrackError::Kind::missing:
        return BA_FILE_MISSING;
    case base::TrackError::Kind::unreadable:
        return BA_FILE_UNREADABLE;
    case base::TrackError::Kind::notAudio:
        return BA_FILE_NOT_AUDIO;
    case base::TrackError::Kind::undecodable:
    case base::TrackError::Kind::damaged:
        break;
    }
    return BA_FILE_DAMAGED;
}

int statusOf(const beatatlas::track::Error& error) {
    return error.status() == BA_TRACK_BAD_ARGUMENT ? BA_FILE_BAD_ARGUMENT : BA_FILE_DAMAGED;
}

/** Does the work into a new outcome and turns what it throws into status and reason. */
template <class Work>
int guarded(BA_File** out, const Work& work) {
    try {
        auto file = std::make_unique<BA_File>();
        int status = BA_FILE_OK;
        const auto fail = [&](int reason, const char* text) {
            status = reason;
            file->reason = text;
        };
        try {
            work(*file);
        } catch (const base::TrackError& error) {
            fail(statusOf(error.kind()), error.what());
        } catch (const beatatlas::track::Error& error) {
            fail(statusOf(error), error.what());
        } catch (const StoppedByHost&) {
            fail(BA_FILE_STOPPED, "was not analysed to its end: the host asked to stop");
        }
        if (status != BA_FILE_BAD_ARGUMENT) *out = file.release();
        return status;
    } catch (const std::bad_alloc&) {
        return BA_FILE_NO_MEMORY;
    } catch (...) {
        // Only the system's own failures are left, such as a thread that cannot be started.
        return BA_FILE_NO_MEMORY;
    }
}

void analyzeFile(const std::string& path, const BA_TrackOptions& track,
                 const BA_FileOptions& options, BA_File& file) {
    media::FileAnalysis::Options wanted;
    wanted.track = toOptions(track);
    wanted.effort = {options.memory_bytes, track.threads};
    wanted.acceptsCutOff = options.accepts_cut_off != 0;
    if (const auto show = progressOf(track))
        wanted.progress = [show](double fraction, double) { show(fraction); };
    media::AnalysedTrack analysed = media::FileAnalysis(std::move(wanted)).analyzeToHandle(path);
    file.source = std::move(analysed.file);
    file.track = std::move(analysed.track);
}

BA_FileFacts factsOf(const base::TrackSource& source) {
    BA_FileFacts facts{};
    facts.container = source.format.container.c_str();
    facts.codec = source.format.codec.c_str();
    facts.artist = source.format.tags.artist.c_str();
    facts.title = source.format.tags.title.c_str();
    facts.damaged_packets = source.damagedPackets;
    facts.repeated_packets = source.repeatedPackets;
    facts.dropped_frames = source.droppedFrames;
    facts.channels = source.format.channels;
    facts.file_rate = source.format.trackRate;
    facts.format_changes = source.format.changes ? 1 : 0;
    facts.is_cut_off = source.isCutOff ? 1 : 0;
    facts.lacks_end = source.lacksEnd ? 1 : 0;
    facts.samples = source.overload.heard;
    facts.clipped_samples = source.overload.clipped;
    facts.clipped_peak = source.overload.peak;
    facts.not_numbers = source.overload.notNumbers;
    facts.is_too_loud = source.overload.isTooLoud() ? 1 : 0;
    return facts;
}

}  // namespace

void BA_FileOptionsInit(BA_FileOptions* options, size_t size) {
    if (options == nullptr || size < sizeof size) return;
    const BA_FileOptions usual{sizeof(BA_FileOptions), kUsualMemory, 0, 0};
    std::memset(static_cast<void*>(options), 0, size);
    std::memcpy(options, &usual, std::min(size, sizeof usual));
    std::memcpy(options, &size, sizeof size);
}

int BA_FileAnalyze(const char* path, const BA_TrackOptions* track, const BA_FileOptions* options,
                   BA_File** file) {
    if (file == nullptr) return BA_FILE_BAD_ARGUMENT;
    *file = nullptr;
    BA_FileOptions own;
    if (path == nullptr || !areGood(track) || !readOptions(options, own))
        return BA_FILE_BAD_ARGUMENT;
    return guarded(file, [&](BA_File& out) {
        // The program's name for its standard input, which a library leaves to its host.
        const std::string name = std::strcmp(path, "-") == 0 ? "./-" : path;
        analyzeFile(name, wholeOptions(track), own, out);
    });
}

int BA_FileAnalyzeSamples(const float* samples, int32_t rate, int32_t channels, int64_t frames,
                          const BA_TrackOptions* track, BA_File** file) {
    if (file == nullptr) return BA_FILE_BAD_ARGUMENT;
    *file = nullptr;
    if (samples == nullptr || rate <= 0 || channels <= 0 || channels > media::kMostChannels ||
        frames <= 0 || !areGood(track))
        return BA_FILE_BAD_ARGUMENT;
    return guarded(file, [&](BA_File& out) {
        const BA_TrackOptions plain = wholeOptions(track);
        Options wanted = toOptions(plain);
        wanted.progress = progressOf(plain);
        media::SampleTrack memory(samples, rate, channels, frames, wanted.progress);
        out.source = memory.source();
        out.track = memory.analyze(wanted);
    });
}

void BA_FileRelease(BA_File* file) {
    delete file;
}

const BA_Track* BA_FileTrack(const BA_File* file) {
    return file == nullptr ? nullptr : file->track.get();
}

const char* BA_FileReason(const BA_File* file) {
    return file == nullptr ? "" : file->reason.c_str();
}

int32_t BA_FileFactsOf(const BA_File* file, BA_FileFacts* facts, size_t size) {
    if (file == nullptr || !file->track) return 0;
    if (facts != nullptr) {
        const BA_FileFacts known = factsOf(file->source);
        std::memset(static_cast<void*>(facts), 0, size);
        std::memcpy(facts, &known, std::min(size, sizeof known));
    }
    return 1;
}

size_t BA_FileGaps(const BA_File* file, BA_FileGap* out, size_t room) {
    if (file == nullptr) return 0;
    const std::vector<base::Gap>& gaps = file->source.gaps;
    if (out != nullptr)
        std::transform(gaps.begin(), gaps.begin() + std::min(room, gaps.size()), out,
                       [](const base::Gap& gap) {
                           return BA_FileGap{gap.start, gap.length};
                       });
    return gaps.size();
}

void BA_FileShowMessages(int32_t shown) {
    media::showFfmpegMessages(shown != 0);
}
