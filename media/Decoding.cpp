// SPDX-License-Identifier: MIT
#include "media/Decoding.h"

#include <system_error>
#include <utility>

#include "media/trackLength.h"

namespace media {

namespace {

constexpr int kMomentMs = 100;

PcmStore::WhenFull whenFull(Decoding::Place place) {
    return place == Decoding::Place::ownThread ? PcmStore::WhenFull::wait
                                               : PcmStore::WhenFull::grow;
}

}  // namespace

Decoding::Decoding(const std::string& path, std::int64_t limitBytes, Place place, Hooks hooks)
    : hooks_(std::move(hooks)), store_(limitBytes, whenFull(place)), decoder_(path),
      sink_([this](const StereoBlock& block) { take(block); },
            [](std::int64_t frames) { refuseAbove(static_cast<double>(frames)); }),
      chain_(sink_), place_(place) {
    refuseTooLong(decoder_);
}

Decoding::~Decoding() {
    isStopped_ = true;
    store_.abandon();
    if (thread_.joinable()) thread_.join();
}

void Decoding::start() {
    if (place_ == Place::readersThread) return;
    try {
        thread_ = std::thread([this] { runInOwnThread(); });
    } catch (const std::system_error&) {
        // The system has no thread left.
        place_ = Place::readersThread;
        store_.setWhenFull(whenFull(place_));
    }
}

void Decoding::runInOwnThread() {
    while (!isDecoded_ && !isStopped_) guardedStep();
}

void Decoding::guardedStep() {
    try {
        step();
    } catch (...) {
        isDecoded_ = true;
        store_.fail(std::current_exception());
    }
}

void Decoding::step() {
    isDecoded_ = !decoder_.step(chain_);
    shareRead_ = decoder_.shareRead();
    if (!isDecoded_) return;
    if (hooks_.atEnd) hooks_.atEnd(decoder_, sink_.frames());
    store_.finish();
}

void Decoding::take(const StereoBlock& block) {
    if (sessionRate_ == 0) noteLength();
    if (hooks_.alongside) hooks_.alongside(block);
    if (!store_.append(block)) isStopped_ = true;
}

void Decoding::noteLength() {
    sessionRate_ = chain_.outputRate();
    const auto frames = decoder_.declaredFrames();
    if (!frames) return;
    const std::int64_t converted = convertedFrames(*frames, chain_.trackRate(), sessionRate_);
    if (converted > 0 && converted <= kMostFrames) declaredFrames_ = converted;
}

std::int64_t Decoding::read(PcmReader& reader, float* left, float* right, std::int64_t frames) {
    if (place_ == Place::readersThread) {
        while (!reader.isReady()) guardedStep();
    }
    return reader.read(left, right, frames);
}

void Decoding::awaitFirst() {
    if (place_ == Place::readersThread) {
        while (store_.frames() == 0 && !store_.hasEnded()) guardedStep();
    }
    store_.awaitFirst();
}

bool Decoding::awaitEnd() {
    if (place_ == Place::ownThread) return store_.awaitEnd(kMomentMs);
    if (!store_.hasEnded()) guardedStep();
    return store_.awaitEnd(0);
}

}  // namespace media
