// SPDX-License-Identifier: MIT
#include "media/FilePasses.h"

#include <algorithm>
#include <utility>

#include "media/RateConverter.h"

namespace media {

namespace {

// The program with its libraries, an open decoder and the blocks in transit.
constexpr double kProgramBytes = 48.0 * 1024 * 1024;

// What an analysis needs besides, including key and waves: see track.h.
constexpr double kAnalysisBytes = 30.0 * 1024 * 1024;
constexpr double kAutoBytesPerSecond = 30.0 * 1024;
constexpr double kSessionBytesPerSecond = 12.0 * 1024;

double analysisBytesPerFrame(beatatlas::track::TempoMode tempo) {
    const bool isAuto = tempo == beatatlas::track::TempoMode::automatic;
    return (isAuto ? kAutoBytesPerSecond : kSessionBytesPerSecond) / kLowestSessionRate;
}

constexpr double kBytesPerIntegerFrame = 4.0;
constexpr double kBytesPerFloatFrame = 8.0;

// How far a decoder may be ahead of its reader when nothing is kept: a dozen seconds in floats.
constexpr std::int64_t kWindowBytes = std::int64_t{4} << 20;

Decoding::Place placeOf(bool hasThread) {
    return hasThread ? Decoding::Place::ownThread : Decoding::Place::readersThread;
}

}  // namespace

struct FilePasses::AnotherDecoding {
    AnotherDecoding(const std::string& path, Decoding::Place place, Decoding::Hooks hooks)
        : decoding(path, kWindowBytes, place, std::move(hooks)) {}

    Decoding decoding;
    PcmReader reader{decoding.store()};
};

FilePasses::FilePasses(std::string path, Options options)
    : path_(std::move(path)), options_(std::move(options)),
      first_(path_, keptBytes(), placeOf(options_.effort.threads > 1), hooks()),
      firstReader_(std::make_shared<PcmReader>(first_.store())), threads_(options_.effort.threads) {
    first_.start();
    first_.awaitFirst();
}

Decoding::Hooks FilePasses::hooks() {
    const auto examine = [this](const TrackDecoder& decoder, std::int64_t frames) {
        file_ = usableTrack(path_, decoder, frames, options_.acceptsCutOff);
        file_.overload = meter_.overload();
    };
    const auto listen = [this](const StereoBlock& block) {
        meter_.put(block);
        if (options_.alongside) options_.alongside(block);
    };
    return {listen, examine};
}

/** The memory left for the longest track that fits; what the analysis takes besides grows with its
 *  length. */
std::int64_t FilePasses::keptBytes() const {
    const auto allowed = static_cast<double>(options_.effort.memoryBytes);
    const double left = std::max(0.0, allowed - kProgramBytes - kAnalysisBytes);
    const double beside = analysisBytesPerFrame(options_.tempo) + options_.alongsideBytesPerFrame;
    const double kept = left * kBytesPerIntegerFrame / (kBytesPerIntegerFrame + beside);
    return std::max(kWindowBytes, static_cast<std::int64_t>(kept));
}

void FilePasses::expect(std::int64_t frames) {
    PcmStore& store = first_.store();
    const double perFrame = store.beginsWithFloats() ? kBytesPerFloatFrame : kBytesPerIntegerFrame;
    const bool isKept = !options_.isReadOnce && store.isWhole() &&
                        static_cast<double>(frames) * perFrame <= static_cast<double>(keptBytes());
    if (isKept) return;
    store.setLimit(kWindowBytes);
    threads_ = std::max(1, options_.effort.threads - 1);
}

beatatlas::track::Pass FilePasses::open() {
    const std::lock_guard lock(mutex_);
    auto reader = std::exchange(firstReader_, nullptr);
    if (!reader && !first_.store().isWhole()) return decodeAnew();
    if (!reader) reader = std::make_shared<PcmReader>(first_.store());
    return [this, reader](float* left, float* right, std::int64_t frames) {
        return first_.read(*reader, left, right, frames);
    };
}

beatatlas::track::Pass FilePasses::decodeAnew() const {
    const auto refuseAnother = [state = file_.state](const TrackDecoder& decoder, std::int64_t) {
        refuseUnlessUnchanged(decoder, state);
    };
    const auto place = placeOf(options_.effort.threads > threads_);
    auto again =
        std::make_shared<AnotherDecoding>(path_, place, Decoding::Hooks{nullptr, refuseAnother});
    again->decoding.start();
    return [again](float* left, float* right, std::int64_t frames) {
        return again->decoding.read(again->reader, left, right, frames);
    };
}

bool FilePasses::areCostly() const {
    return !first_.store().hasEnded() || !first_.store().isWhole();
}

bool FilePasses::awaitEnd() {
    if (first_.store().isFull()) firstReader_.reset();
    return first_.awaitEnd();
}

}  // namespace media
