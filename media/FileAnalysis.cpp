// SPDX-License-Identifier: MIT
#include "media/FileAnalysis.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "media/FilePasses.h"

namespace media {

namespace {

// Share of the whole work, when decoding has to end before the analysis can begin.
constexpr double kDecodingShare = 0.5;

using beatatlas::track::TrackHandle;

/** One progress bar for all of the work, whatever has to be repeated. */
class WholeProgress {
public:
    explicit WholeProgress(const std::function<void(double, double)>& shown) : shown_(shown) {}

    void setSeconds(double seconds) { seconds_ = seconds; }

    /** @param fraction  of what was left when beginAgain() was called. A decoder that reads
     *                   elsewhere in its file may report less than before: that is not shown
     *  @throws Interrupted */
    void show(double fraction) {
        base::Interrupt::check();
        done_ = std::max(done_, begin_ + std::min(fraction, 1.0) * (1.0 - begin_));
        if (shown_) shown_(done_, seconds_);
    }

    /** Fractions count from here on. */
    void beginAgain() { begin_ = done_; }

private:
    const std::function<void(double, double)>& shown_;
    double seconds_ = 0.0;
    double begin_ = 0.0;
    double done_ = 0.0;
};

/** @return null when the track turns out to have another length */
TrackHandle attempt(const beatatlas::track::Options& wanted, FilePasses& passes,
                    std::int64_t frames, WholeProgress& progress) {
    passes.expect(frames);
    progress.setSeconds(static_cast<double>(frames) / passes.rate());
    beatatlas::track::Options options = wanted;
    options.threads = passes.threads();
    options.progress = [&](double fraction) { progress.show(fraction); };
    const beatatlas::track::Source source{[&] { return passes.open(); }, passes.areCostly()};
    try {
        return analyzeToHandle(options, passes.rate(), frames, source);
    } catch (const beatatlas::track::Error& error) {
        if (error.status() != BA_TRACK_WRONG_LENGTH) throw;
        return nullptr;
    }
}

void awaitEnd(FilePasses& passes, WholeProgress& progress) {
    while (!passes.awaitEnd()) progress.show(passes.shareRead() * kDecodingShare);
    progress.beginAgain();
}

std::string wrongLengthNote(std::int64_t declared, std::int64_t found) {
    return "declares " + std::to_string(declared) + (declared == 1 ? " frame" : " frames") +
           " and has " + std::to_string(found) + ": analysed over again with its true length";
}

}  // namespace

FileAnalysis::FileAnalysis(Options options) : options_(std::move(options)) {}

AnalysedFile FileAnalysis::analyze(const std::string& path) const {
    AnalysedTrack analysed = analyzeToHandle(path);
    return {std::move(analysed.file), beatatlas::track::resultOf(analysed.track.get())};
}

AnalysedTrack FileAnalysis::analyzeToHandle(const std::string& path) const {
    // The session's key takes a second pass.
    FilePasses passes(path, {options_.effort, options_.track.tempo, options_.acceptsCutOff,
                             !options_.track.wantsSessionKey, options_.alongside,
                             options_.alongsideBytesPerFrame});
    WholeProgress progress(options_.progress);
    const auto declared = passes.declaredFrames();
    if (declared) {
        if (auto track = attempt(options_.track, passes, *declared, progress))
            return {passes.file(), std::move(track)};
        progress.beginAgain();
    }
    awaitEnd(passes, progress);
    const std::int64_t frames = passes.frames();
    if (declared && frames != *declared && options_.note)
        options_.note(wrongLengthNote(*declared, frames));
    auto track = frames == declared ? nullptr : attempt(options_.track, passes, frames, progress);
    if (!track)
        throw base::TrackError(
            "did not give the same music twice: its decoder cannot be relied on");
    return {passes.file(), std::move(track)};
}

}  // namespace media
