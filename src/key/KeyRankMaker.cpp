// SPDX-License-Identifier: MIT
// The key of a track, block by block:
//   1. duck the loudest transients        4. a 4096-point spectrum every 0.3 s
//   2. band-limit                         5. the peak of every semitone band
//   3. take every fourth sample           6. at the end: note encounters, chroma, key ranking
#include "key/KeyRankMaker.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "dsp/truncation.h"
#include "key/ChromaFolder.h"
#include "key/frameTiming.h"

namespace beatatlas {

namespace {

constexpr int kInputFrames = 16384;  // besides the windows of the transient suppression

template <typename Range, typename T>
int copyResults(const Range& from, T* out) {
    if (out != nullptr) std::copy(from.begin(), from.end(), out);
    return static_cast<int>(from.size());
}

}  // namespace

int KeyRankMaker::create(int rate, int len) {
    release();
    rate_ = rate;
    length_ = len;
    const int wholeRate = rate / kDecimation;
    analysisRate_ = static_cast<double>(wholeRate);
    suppressor_.create(rate);
    capacity_ = suppressor_.preWindow() + suppressor_.postWindow() + kInputFrames;
    filter_.create(rate);
    decimation_.create(rate);
    reset();
    waiting_ = std::make_unique<std::int16_t[]>(2 * static_cast<std::size_t>(capacity_));
    // Last: without it nothing is taken.
    input_ = std::make_unique<std::int16_t[]>(2 * static_cast<std::size_t>(capacity_));
    return 1;
}

void KeyRankMaker::reset() {
    maxFrames_ = maximumFramesOf(length_);
    frames_ = 0;
    complete_ = false;
    fill_ = 0;
    waitingFirst_ = waitingEnd_ = 0;
    received_ = 0;
    suppressor_.setLevels(0.0, 0.0);
    filter_.reset();
    decimation_.reset();
    spectrum_.create(analysisRate_);
    spectrogram_.create(maxFrames_, spectrum_.bands().count());
    bandTotals_.assign(static_cast<std::size_t>(spectrum_.bands().count()), 0.0);
    encounters_ = {};
    ranking_.reset();
}

void KeyRankMaker::release() {
    input_.reset();
    waiting_.reset();
    waitingFirst_ = waitingEnd_ = 0;
    suppressor_.release();
    decimation_.release();
    spectrum_.release();
    spectrogram_.release();
}

/** Whole seconds first: the last fraction of a second of a track gets no frames of its own. */
int KeyRankMaker::maximumFramesOf(int frames) const {
    const int quarterRate = static_cast<int>(analysisRate_);
    if (quarterRate <= 0) return 0;
    const int seconds = (frames / kDecimation) / quarterRate;
    return truncToInt32(static_cast<double>(seconds) / kSecondsPerFrame);
}

int KeyRankMaker::setPreCheckData(int count, double sum, double peak, int /*quietCount*/,
                                  double /*quietSum*/, double /*quietPeak*/) {
    const double average = count > 0 ? (sum * 0.5) / static_cast<double>(count) : 0.0;
    suppressor_.setLevels(average, peak);
    maxFrames_ = maximumFramesOf(count);
    return maxFrames_;
}

void KeyRankMaker::putSample(const std::int16_t* frames, int n) {
    if (input_ == nullptr || complete_ || frames == nullptr || n <= 0) return;
    int taken = 0;
    while (taken < n) {
        taken += takeFrames(frames + (2 * static_cast<std::ptrdiff_t>(taken)), n - taken);
        if (!isFull() && received_ < length_) continue;
        analyzeAC(false);
    }
    if (received_ < length_) return;
    analyzeAC(true);
    filterWaiting();
    analyzeKEY();
    complete_ = true;
}

/** Copies frames until the input buffer is full or the input used up; returns how many. */
int KeyRankMaker::takeFrames(const std::int16_t* frames, int n) {
    const int count = std::min(n, capacity_ - fill_);
    std::copy_n(frames, 2 * static_cast<std::size_t>(count),
                input_.get() + (2 * static_cast<std::ptrdiff_t>(fill_)));
    fill_ += count;
    received_ += count;
    return count;
}

/** Hands the frames on to the band filter, but what may still be ducked by frames to come: that
 *  stays for the next time. A track shorter than that is kept whole. */
void KeyRankMaker::analyzeAC(bool last) {
    filterWaiting();
    const int ducked = suppressor_.preWindow() + suppressor_.postWindow();
    const int kept = std::min(fill_, ducked);
    if (frames_ < maxFrames_) suppressor_.suppress(input_.get(), fill_);
    input_.swap(waiting_);
    waitingFirst_ = 0;
    waitingEnd_ = last ? fill_ : fill_ - kept;
    std::copy_n(waiting_.get() + (2 * static_cast<std::ptrdiff_t>(fill_ - kept)),
                2 * static_cast<std::size_t>(kept), input_.get());
    fill_ = kept;
}

void KeyRankMaker::filterWaiting() {
    if (filter_.isUnderWay()) {
        std::array<std::int16_t, KeyBandFilter::kLag> last;
        filter_.end(last.data());
        takeFiltered(0, last.data(), KeyBandFilter::kLag);
    }
    for (BandBlock next = waiting(decimation_.room()); next.n > 0;
         next = waiting(decimation_.room())) {
        filter_.filter(next.frames, decimation_.end(), next.n);
        waitingFirst_ += next.n;
        addFiltered(next.n);
    }
}

KeyRankMaker::BandBlock KeyRankMaker::waiting(int most) {
    const int left = frames_ < maxFrames_ ? waitingEnd_ - waitingFirst_ : 0;
    return {&filter_, waiting_.get() + (2 * static_cast<std::ptrdiff_t>(waitingFirst_)),
            std::min(most, left)};
}

void KeyRankMaker::takeFiltered(int frames, const std::int16_t* samples, int n) {
    waitingFirst_ += frames;
    for (int taken = 0; taken < n && frames_ < maxFrames_;) {
        const int count = std::min(n - taken, decimation_.room());
        std::copy_n(samples + taken, count, decimation_.end());
        addFiltered(count);
        taken += count;
    }
}

// Never past the end of an analysis frame: it may be the last one.
void KeyRankMaker::addFiltered(int n) {
    decimation_.add(n);
    if (decimation_.missing() > 0) return;
    analyzeFFT();
    decimation_.hop();
}

void KeyRankMaker::analyzeFFT() {
    const std::vector<double>& magnitudes = spectrum_.measure(decimation_);
    for (std::size_t b = 0; b < magnitudes.size(); ++b) bandTotals_[b] += magnitudes[b];
    spectrogram_.write(frames_, magnitudes.data());
    ++frames_;
}

// The mean and the maximum of the spectrogram are not taken: no result depends on them.
void KeyRankMaker::analyzeKEY() {
    encounters_ = encounterNotes(bandTotals_);
    ranking_.rank(foldChroma(spectrogram_, maxFrames_));
}

int KeyRankMaker::getKeyRank(int* out) const {
    return copyResults(ranking_.keys(), out);
}

int KeyRankMaker::getKeyPoint(double* out) const {
    return copyResults(ranking_.scores(), out);
}

int KeyRankMaker::getNoteEncount(int* out) const {
    return copyResults(encounters_.counts, out);
}

int KeyRankMaker::getNoteEncountVal(double* out) const {
    return copyResults(encounters_.values, out);
}

}  // namespace beatatlas
