// SPDX-License-Identifier: MIT
#include "track/TrackAnalysis.h"

#include "track/JoinedThread.h"
#include "track/Pass.h"

namespace beatatlas::track::inner {

namespace {

// Approximate cost of the parts, in half nanoseconds a frame.
constexpr std::int64_t kLevelUnits = 3;
constexpr std::int64_t kKeyUnits = 6;
constexpr std::int64_t kSessionKeyUnits = 13;

// Assembling the result, once at the very end.
constexpr std::int64_t kResultUnits = 1;

std::int64_t beatUnits(const BA_TrackOptions& options) {
    const bool waves = options.wants_waves != 0;
    switch (options.tempo) {
    case BA_TRACK_TEMPO_AUTO:
        return waves ? 48 : 40;
    case BA_TRACK_TEMPO_OFF:
        return waves ? 26 : 1;
    default:
        return waves ? 28 : 24;
    }
}

std::int64_t closingUnits(const BA_TrackOptions& options) {
    if (options.tempo == BA_TRACK_TEMPO_OFF) return 0;
    return options.tempo == BA_TRACK_TEMPO_AUTO ? 6 : 1;
}

}  // namespace

TrackAnalysis::TrackAnalysis(const BA_TrackOptions& options, int rate, int frames,
                             const BA_TrackSource& source, Outcome& outcome)
    : options_(options), rate_(rate), frames_(frames), source_(source), outcome_(outcome),
      units_(unitsOf(options, source.fewest_passes != 0)),
      progress_(options.progress, options.progress_host, totalUnits()),
      beats_(makeBeatFinder(options, rate, frames)) {
    if (options.wants_key != 0) key_.emplace(rate);
    if (options.wants_session_key != 0) sessionKey_.emplace(rate, frames);
}

// Of two parts that run in parallel, only the longer one counts towards progress.
TrackAnalysis::Units TrackAnalysis::unitsOf(const BA_TrackOptions& options, bool isFewestPasses) {
    const std::int64_t beats = beatUnits(options) + (options.wants_key != 0 ? kKeyUnits : 0);
    const std::int64_t closing = closingUnits(options);
    if (options.wants_session_key == 0) return {0, beats, closing, 0};
    if (options.threads == 1) return {kLevelUnits, beats, closing, kSessionKeyUnits};
    if (isFewestPasses) return {kLevelUnits, beats, 0, kSessionKeyUnits};
    if (beats + closing < kSessionKeyUnits) return {kLevelUnits, 0, 0, kSessionKeyUnits};
    return {kLevelUnits, beats, closing, 0};
}

std::int64_t TrackAnalysis::totalUnits() const {
    return (units_.levels + units_.beats + units_.closing + units_.sessionKey) * frames_ +
           kResultUnits;
}

TrackResult TrackAnalysis::run() {
    findAll();
    TrackResult result;
    result.rate = rate_;
    result.frames = frames_;
    beats_->addTo(result);
    if (key_) key_->addTo(result);
    if (sessionKey_) sessionKey_->addTo(result);
    progress_.add(kResultUnits);
    return result;
}

void TrackAnalysis::findAll() {
    if (!sessionKey_) return findBeats();
    if (source_.fewest_passes != 0) return findInFewestPasses();
    findWithSessionKey();
}

void TrackAnalysis::findBeats() {
    hear({beats_.get(), evidenceKey()}, units_.beats);
    closeBeats();
}

void TrackAnalysis::findWithSessionKey() {
    hear({&levels_}, units_.levels);
    sessionKey_->setLevels(levels_);
    if (options_.threads > 1)
        return sideBySide([this] { findBeats(); }, [this] { hearSessionKey(); });
    hear({beats_.get(), evidenceKey(), &*sessionKey_}, units_.beats + units_.sessionKey);
    closeBeats();
}

void TrackAnalysis::findInFewestPasses() {
    hear({&levels_, beats_.get(), evidenceKey()}, units_.levels + units_.beats);
    sessionKey_->setLevels(levels_);
    sideBySide([this] { closeBeats(); }, [this] { hearSessionKey(); });
}

void TrackAnalysis::hearSessionKey() {
    hear({&*sessionKey_}, units_.sessionKey);
}

void TrackAnalysis::closeBeats() {
    beats_->close();
    progress_.add(units_.closing * frames_);
}

void TrackAnalysis::hear(std::initializer_list<Listener*> listeners, std::int64_t unitsPerFrame) {
    Pass pass(source_, frames_);
    for (Block block = pass.next(); block.frames > 0; block = pass.next()) {
        outcome_.throwIfFailed();
        for (Listener* listener : listeners)
            if (listener != nullptr) listener->hear(block);
        progress_.add(unitsPerFrame * block.frames);
    }
}

// Finds the key in a thread of its own if that is allowed and possible, else after the beats.
template <class Beats, class Key>
void TrackAnalysis::sideBySide(const Beats& beats, const Key& key) {
    JoinedThread thread;
    const bool isBeside = options_.threads > 1 && thread.start([&] { outcome_.guard(key); });
    outcome_.guard(beats);
    thread.join();
    outcome_.throwIfFailed();
    if (!isBeside) key();
}

}  // namespace beatatlas::track::inner
