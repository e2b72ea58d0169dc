// SPDX-License-Identifier: MIT
// Removes percussive beats from a mono buffer by working on its short-time spectrum:
//   1. magnitudes and phases of overlapping frames, the weak bins of each frame silenced against
//      their octave
//   2. the lowest bins held down to their own slow envelope over time: a bass drum rises faster
//      than a bass note
//   3. frames rebuilt from what is left and added up, windowed a second time
//
// The frames go through the transform several at a time (dsp/FrameTransform.h). Most bins end up
// silent; of a silent bin nothing but the signs of its zeros remains, and these are had without its
// phase.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>

#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "dsp/FrameTransform.h"
#include "dsp/isLongTrack.h"
#include "util/OctaveGate.h"

namespace {

using beatatlas::FrameTransform;
using beatatlas::OctaveGate;
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

bool isPositiveZero(float value) {
    return value == 0.0F && !std::signbit(value);
}

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

/** Frames that are transformed together, in time or frequency. */
struct FrameBatch {
    static constexpr std::size_t kFrames = FrameTransform::kFramesAtOnce;

    explicit FrameBatch(std::size_t frameLength)
        : length(frameLength), re(zeroed(kFrames * length)), im(zeroed(kFrames * length)) {}

    float* reOf(std::size_t frame) const { return re.get() + (frame * length); }
    float* imOf(std::size_t frame) const { return im.get() + (frame * length); }

    void run(const FrameTransform& transform, bool inverse, std::size_t count) const {
        transform.run(inverse, re.get(), im.get(), static_cast<std::ptrdiff_t>(length),
                      static_cast<int>(count));
    }

    std::size_t length;
    FloatArray re;
    FloatArray im;
};

/** What both directions share: the frames, their window and their transform. */
struct Workshop {
    explicit Workshop(const Framing& f)
        : framing(f), length(static_cast<std::size_t>(f.frameLength)), window(zeroed(length)),
          transform(f.frameLength), batch(length) {
        hanning(framing.frameLength, window.get());
    }

    /** Calls work(first frame, frames) for batch after batch. */
    template <typename Work>
    void forEachBatch(Work work) const {
        for (std::size_t first = 0; first < framing.frames; first += FrameBatch::kFrames)
            work(first, std::min(FrameBatch::kFrames, framing.frames - first));
    }

    Framing framing;
    std::size_t length;
    FloatArray window;
    FrameTransform transform;
    FrameBatch batch;
};

void loadWindowed(const float* in, const Workshop& shop, std::size_t place) {
    float* re = shop.batch.reOf(place);
    for (std::size_t i = 0; i < shop.length; ++i) re[i] = in[i] * shop.window[i];
    std::fill_n(shop.batch.imOf(place), shop.length, 0.0F);
}

/** Whether the signs of cosine and sine of the angle of (re, im) are plain from those of re and im:
 *  they are unless the angle may round to another quadrant. */
bool isInsideQuadrant(float re, float im) {
    constexpr float kClear = 0.001F;
    const float x = std::fabs(re);
    const float y = std::fabs(im);
    return x > kClear * y && y > kClear * x;
}

/** A silent bin keeps only the quadrant of its phase, for the signs of its zeros. */
float quadrantPhase(float re, float im) {
    return std::copysign(re < 0.0F ? 2.25F : 0.75F, im);
}

// The lowest bins keep their whole phase: at a negative rate their envelope gives a silent one a
// magnitude again.
void writePhases(const float* magnitudes, float* re, float* im, int bins, float* phases) {
    for (int k = 0; k < bins; ++k) {
        const bool staysSilent =
            isPositiveZero(magnitudes[k]) && static_cast<std::size_t>(k) >= kBassBins;
        if (staysSilent && isInsideQuadrant(re[k], im[k]))
            phases[k] = quadrantPhase(re[k], im[k]);
        else
            calc_phase(1, phases + k, re + k, im + k);
    }
}

Spectrogram gatedSpectrogram(const Workshop& shop, const float* in) {
    Spectrogram spectrogram(shop.framing);
    const int bins = static_cast<int>(spectrogram.bins);
    OctaveGate gate(bins);
    shop.forEachBatch([&](std::size_t first, std::size_t count) {
        for (std::size_t f = 0; f < count; ++f)
            loadWindowed(in + shop.framing.start(first + f), shop, f);
        shop.batch.run(shop.transform, false, count);
        for (std::size_t f = 0; f < count; ++f) {
            float* magnitudes = spectrogram.magnitudesOf(first + f);
            float* re = shop.batch.reOf(f);
            float* im = shop.batch.imOf(f);
            calc_mag(bins, magnitudes, re, im);
            gate.apply(magnitudes);
            writePhases(magnitudes, re, im, bins, spectrogram.phasesOf(first + f));
        }
    });
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
    const int overlap = framing.frameLength / framing.hop;
    make_lpf0(&b, &a, kBassEnvelopeHz / (rate / static_cast<float>(overlap)));
    const FloatArray column = zeroed(framing.frames);
    const FloatArray smooth = zeroed(framing.frames);
    for (std::size_t bin = 0; bin < kBassBins && bin < spectrogram.bins; ++bin)
        limitBin(bin, framing.frames, spectrogram, b, a, column.get(), smooth.get());
}

/** One bin as a complex number. */
struct Bin {
    float re;
    float im;
};

/** Zero times the cosine and the sine, by their signs alone: most bins are silent. */
Bin silentBin(float phase) {
    // The largest floats below a quarter and below half a turn.
    constexpr float kQuarterTurn = 0x1.921fb4p+0F;
    constexpr float kHalfTurn = 0x1.921fb4p+1F;
    const float size = std::fabs(phase);
    const float im = std::copysign(0.0F, phase);
    return {size > kQuarterTurn ? -0.0F : 0.0F, size > kHalfTurn ? -im : im};
}

/** The whole spectrum from its lower half; the bin at half the rate stays silent. Where bin 0 would
 *  have its mirror image a frame has ended. */
void loadSpectrum(const float* magnitudes, const float* phases, const Workshop& shop,
                  std::size_t place) {
    const std::size_t end = shop.length;
    float* re = shop.batch.reOf(place);
    float* im = shop.batch.imOf(place);
    re[end / 2] = im[end / 2] = 0.0F;
    for (std::size_t k = 0; k < end / 2; ++k) {
        const Bin bin = isPositiveZero(magnitudes[k]) ? silentBin(phases[k])
                                                      : Bin{magnitudes[k] * std::cos(phases[k]),
                                                            magnitudes[k] * std::sin(phases[k])};
        re[k] = bin.re;
        im[k] = bin.im;
        if (k == 0) continue;
        re[end - k] = bin.re;
        im[end - k] = -bin.im;
    }
}

void overlapAdd(const Workshop& shop, const Spectrogram& spectrogram, int n, float* out) {
    const Framing& framing = shop.framing;
    const auto length = static_cast<float>(framing.frameLength);
    const float weight = kOverlapScale / (length / static_cast<float>(framing.hop));
    const FloatArray sum = zeroed(static_cast<std::size_t>(n));
    shop.forEachBatch([&](std::size_t first, std::size_t count) {
        for (std::size_t f = 0; f < count; ++f)
            loadSpectrum(spectrogram.magnitudesOf(first + f), spectrogram.phasesOf(first + f), shop,
                         f);
        shop.batch.run(shop.transform, true, count);
        for (std::size_t f = 0; f < count; ++f) {
            const std::size_t start = framing.start(first + f);
            const float* re = shop.batch.reOf(f);
            for (std::size_t i = 0; i < shop.length; ++i) {
                sum[start + i] += ((re[i] / length) * shop.window[i]) * weight;
                out[start + i] = sum[start + i];
            }
        }
    });
}

}  // namespace

void CutBeats(float* out, float* in, int n, float rate, int div, int mode) {
    const Framing framing = framingOf(n, rate, div, mode);
    if (out == nullptr || in == nullptr || framing.frames == 0) return;
    const Workshop shop(framing);
    const Spectrogram spectrogram = gatedSpectrogram(shop, in);
    limitBass(framing, rate, spectrogram);
    overlapAdd(shop, spectrogram, n, out);
}
