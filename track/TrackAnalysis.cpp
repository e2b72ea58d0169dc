// SPDX-License-Identifier: MIT
#include "track/TrackAnalysis.h"

#include <system_error>
#include <thread>

#include "track/Pass.h"

namespace beatatlas::track::inner {

namespace {

// What the parts cost, about, for the host's progress: per frame, and for closing the beats per frame too.
constexpr std::int64_t kLevelUnits = 1;
constexpr std::int64_t kBeatUnits = 24;
constexpr std::int64_t kClosingUnits = 1;
constexpr std::int64_t kKeyUnits = 1;
constexpr std::int64_t kSessionKeyUnits = 5;

/** A thread that has ended when this goes. */
class JoinedThread {
public:
    JoinedThread() = default;
    ~JoinedThread() { join(); }
    JoinedThread(const JoinedThread&) = delete;
    JoinedThread& operator=(const JoinedThread&) = delete;

    /** @return false when the system has no thread to give */
    template <class Work>
    bool start(const Work& work) {
        try {
            thread_ = std::thread(work);
            return true;
        } catch (const std::system_error&) {
            return false;
        }
    }
    void join() {
        if (thread_.joinable()) thread_.join();
    }

private:
    std::thread thread_;
};

}  // namespace

TrackAnalysis::TrackAnalysis(const BA_TrackOptions& options, int rate, int frames,
                             const BA_TrackSource& source, Outcome& outcome)
    : options_(options), rate_(rate), frames_(frames), source_(source), outcome_(outcome),
      progress_(options.progress, options.progress_host, totalUnits()),
      beats_(makeBeatFinder(options, rate, frames)) {
    if (options.wants_key == 0) return;
    key_.emplace(rate);
    if (options.skips_session_key == 0) sessionKey_.emplace(rate, frames);
}

std::int64_t TrackAnalysis::totalUnits() const {
    const bool wantsSessionKey = options_.wants_key != 0 && options_.skips_session_key == 0;
    const std::int64_t sessionKey = wantsSessionKey ? kLevelUnits + kSessionKeyUnits : 0;
    return (beatUnits() + kClosingUnits + sessionKey) * frames_;
}

std::int64_t TrackAnalysis::beatUnits() const {
    return kBeatUnits + (options_.wants_key != 0 ? kKeyUnits : 0);
}

TrackResult TrackAnalysis::run() {
    if (!sessionKey_)
        findBeats();
    else if (source_.fewest_passes != 0)
        findInFewestPasses();
    else
        findWithSessionKey();
    TrackResult result;
    result.rate = rate_;
    result.frames = frames_;
    beats_->addTo(result);
    if (key_) key_->addTo(result);
    if (sessionKey_) sessionKey_->addTo(result);
    return result;
}

void TrackAnalysis::findBeats() {
    hear({beats_.get(), evidenceKey()}, beatUnits());
    closeBeats();
}

void TrackAnalysis::findWithSessionKey() {
    hear({&levels_}, kLevelUnits);
    sessionKey_->setLevels(levels_);
    if (options_.threads > 1)
        return sideBySide([this] { findBeats(); }, [this] { hearSessionKey(); });
    hear({beats_.get(), evidenceKey(), &*sessionKey_}, beatUnits() + kSessionKeyUnits);
    closeBeats();
}

void TrackAnalysis::findInFewestPasses() {
    hear({&levels_, beats_.get(), evidenceKey()}, kLevelUnits + beatUnits());
    sessionKey_->setLevels(levels_);
    sideBySide([this] { closeBeats(); }, [this] { hearSessionKey(); });
}

void TrackAnalysis::hearSessionKey() {
    hear({&*sessionKey_}, kSessionKeyUnits);
}

void TrackAnalysis::closeBeats() {
    beats_->close();
    progress_.add(kClosingUnits * frames_);
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

// The key in a thread of its own where one may and can be had, else after the beats. A thread begins with the rounding
// mode of the one that starts it.
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
