// SPDX-License-Identifier: MIT
// Removes percussive beats from a mono buffer by working on its short-time spectrum:
//   1. magnitudes and phases of overlapping frames, the weak bins of each frame silenced against their octave
//   2. the lowest bins held down to their own slow envelope over time: a bass drum rises faster than a bass note
//   3. frames rebuilt from what is left and added up, windowed a second time
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>

#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "util/OctaveGate.h"
#include "util/isLongTrack.h"

namespace {

using FloatArray = std::unique_ptr<float[]>;

constexpr int kFrameLength = 4096;
constexpr int kDefaultHop = 512;
constexpr std::size_t kBassBins = 20;
constexpr float kBassEnvelopeHz = 5.0F;
/** Brings the squared windows of eight overlapping frames to a sum of one. */
constexpr float kOverlapScale = 2.6666667F;

FloatArray zeroed(std::size_t count) {
    return std::make_unique<float[]>(count);
}

/** Hops by mode 1 to 4, before the division, for long and for short tracks. */
struct ModeHops {
    int ofLong;
    int ofShort;
};
constexpr std::array<ModeHops, 4> kModeHops = {
    {{1024, 512}, {1488, 1128}, {1720, 1184}, {2304, 1464}}};

int hopOfMode(int mode, bool isLong) {
    if (mode < 1 || mode > 4) return kDefaultHop;
    const ModeHops& hops = kModeHops[static_cast<std::size_t>(mode - 1)];
    return isLong ? hops.ofLong : hops.ofShort;
}

/** How the buffer is cut into frames. */
struct Framing {
    int frameLength = 0;
    int hop = 0;
    std::size_t frames = 0;

    std::size_t bins() const { return static_cast<std::size_t>(frameLength / 2); }
    std::size_t start(std::size_t frame) const { return frame * static_cast<std::size_t>(hop); }
};

bool isPowerOfTwo(int length) {
    return length > 0 && (length & (length - 1)) == 0;
}

/** No frames where the arguments leave none, or one that cannot be transformed. */
Framing framingOf(int n, float rate, int div, int mode) {
    Framing framing;
    if (div <= 0) return framing;
    framing.frameLength = kFrameLength / div;
    framing.hop = hopOfMode(mode, beatatlas::isLongTrack(n, rate)) / div;
    if (framing.hop < 1 || !isPowerOfTwo(framing.frameLength) || n < framing.frameLength)
        return framing;
    framing.frames = static_cast<std::size_t>((n - framing.frameLength) / framing.hop);
    return framing;
}

/** The lower half of every frame's spectrum, a row per frame. */
struct Spectrogram {
    explicit Spectrogram(const Framing& framing)
        : bins(framing.bins()), magnitudes(zeroed(framing.frames * bins)),
          phases(zeroed(framing.frames * bins)) {}

    float* magnitudesOf(std::size_t frame) const { return magnitudes.get() + (frame * bins); }
    float* phasesOf(std::size_t frame) const { return phases.get() + (frame * bins); }

    std::size_t bins;
    FloatArray magnitudes;
    FloatArray phases;
};

/** One frame in time or frequency; one value more than a frame, for the mirror image of bin 0. */
struct ComplexFrame {
    explicit ComplexFrame(int frameLength)
        : length(static_cast<std::size_t>(frameLength) + 1), re(zeroed(length)),
          im(zeroed(length)) {}

    void clear() const {
        for (std::size_t i = 0; i < length; ++i) re[i] = im[i] = 0.0F;
    }

    std::size_t length;
    FloatArray re;
    FloatArray im;
};

/** @param n negative: the inverse */
void transform(int n, const ComplexFrame& frame) {
    if (fft_less_normalize(n, frame.re.get(), frame.im.get()) != 0) throw std::bad_alloc();
}

void loadWindowed(const float* in, const float* window, int length, const ComplexFrame& frame) {
    frame.clear();
    for (std::size_t i = 0; i < static_cast<std::size_t>(length); ++i)
        frame.re[i] = in[i] * window[i];
}

Spectrogram gatedSpectrogram(const Framing& framing, const float* in, const float* window) {
    Spectrogram spectrogram(framing);
    const int bins = static_cast<int>(spectrogram.bins);
    beatatlas::OctaveGate gate(bins);
    const ComplexFrame frame(framing.frameLength);
    for (std::size_t f = 0; f < framing.frames; ++f) {
        loadWindowed(in + framing.start(f), window, framing.frameLength, frame);
        transform(framing.frameLength, frame);
        calc_mag(bins, spectrogram.magnitudesOf(f), frame.re.get(), frame.im.get());
        calc_phase(bins, spectrogram.phasesOf(f), frame.re.get(), frame.im.get());
        gate.apply(spectrogram.magnitudesOf(f));
    }
    return spectrogram;
}

/** Holds one bin down to its own envelope: what rises faster than the envelope follows is cut. */
void limitBin(std::size_t bin, std::size_t frames, const Spectrogram& spectrogram, float b, float a,
              float* column, float* smooth) {
    for (std::size_t f = 0; f < frames; ++f) column[f] = spectrogram.magnitudesOf(f)[bin];
    filter1(column, smooth, static_cast<long>(frames), b, a);
    for (std::size_t f = 0; f < frames; ++f)
        if (column[f] > smooth[f]) spectrogram.magnitudesOf(f)[bin] = smooth[f];
}

void limitBass(const Framing& framing, float rate, const Spectrogram& spectrogram) {
    float b = 0.0F;
    float a = 0.0F;
    // The frame rate is taken as if a whole number of frames overlapped.
    const auto overlap = static_cast<float>(framing.frameLength / framing.hop);
    make_lpf0(&b, &a, kBassEnvelopeHz / (rate / overlap));
    const FloatArray column = zeroed(framing.frames);
    const FloatArray smooth = zeroed(framing.frames);
    for (std::size_t bin = 0; bin < kBassBins && bin < spectrogram.bins; ++bin)
        limitBin(bin, framing.frames, spectrogram, b, a, column.get(), smooth.get());
}

/** The whole spectrum from its lower half; the bin at half the rate stays silent. */
void loadSpectrum(const float* magnitudes, const float* phases, int length,
                  const ComplexFrame& frame) {
    frame.clear();
    const auto end = static_cast<std::size_t>(length);
    for (std::size_t k = 0; k < end / 2; ++k) {
        frame.re[k] = magnitudes[k] * std::cos(phases[k]);
        frame.im[k] = magnitudes[k] * std::sin(phases[k]);
        frame.re[end - k] = frame.re[k];
        frame.im[end - k] = -frame.im[k];
    }
}

void divide(float* values, std::size_t count, float divisor) {
    for (std::size_t i = 0; i < count; ++i) values[i] = values[i] / divisor;
}

void overlapAdd(const Framing& framing, const Spectrogram& spectrogram, const float* window, int n,
                float* out) {
    const auto length = static_cast<float>(framing.frameLength);
    const float weight = kOverlapScale / (length / static_cast<float>(framing.hop));
    const FloatArray sum = zeroed(static_cast<std::size_t>(n));
    const ComplexFrame frame(framing.frameLength);
    for (std::size_t f = 0; f < framing.frames; ++f) {
        loadSpectrum(spectrogram.magnitudesOf(f), spectrogram.phasesOf(f), framing.frameLength,
                     frame);
        transform(-framing.frameLength, frame);
        divide(frame.re.get(), frame.length, length);
        const std::size_t start = framing.start(f);
        for (std::size_t i = 0; i + 1 < frame.length; ++i) {
            sum[start + i] += (frame.re[i] * window[i]) * weight;
            out[start + i] = sum[start + i];
        }
    }
}

}  // namespace

void CutBeats(float* out, float* in, int n, float rate, int div, int mode) {
    const Framing framing = framingOf(n, rate, div, mode);
    if (out == nullptr || in == nullptr || framing.frames == 0) return;
    const FloatArray window = zeroed(static_cast<std::size_t>(framing.frameLength));
    hanning(framing.frameLength, window.get());
    const Spectrogram spectrogram = gatedSpectrogram(framing, in, window.get());
    limitBass(framing, rate, spectrogram);
    overlapAdd(framing, spectrogram, window.get(), n, out);
}
