// SPDX-License-Identifier: MIT
// A beat grid is nearly regular: the second differences of its frames are small. The times behind
// the frames of a varying tempo are finer than frames, and stored whole.
#include "catalogue/blobCodecs.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "catalogue/Blob.h"
#include "catalogue/CatalogueError.h"

namespace catalogue {

namespace {

using beatatlas::track::Beat;
using beatatlas::track::WavePoint;

/** How a column of numbers is stored. */
enum class Form : std::uint8_t {
    derived = 0,  ///< from small integers
    whole = 1,    ///< every number with all its bits
};

constexpr double kPerHundredth = 100.0;
constexpr double kMostHundredths = 1e9;
constexpr int kColorBits = 3;
constexpr int kColors = 1 << kColorBits;
constexpr float kLevels = 32.0F;

bool areSameBits(double one, double other) {
    return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

double secondsOf(std::int64_t frame, int rate) {
    return static_cast<double>(frame) / rate;
}

/** Frames wrap around like unsigned numbers, so that any list comes back. */
std::int64_t sum(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}
std::int64_t difference(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

bool isHundredths(double bpm) {
    if (!(std::abs(bpm) < kMostHundredths)) return false;
    return areSameBits(std::round(bpm * kPerHundredth) / kPerHundredth, bpm);
}

std::int64_t hundredthsOf(double bpm) {
    return std::llround(bpm * kPerHundredth);
}

Form readForm(BlobReader& in) {
    const std::uint8_t form = in.byte();
    if (form > static_cast<std::uint8_t>(Form::whole))
        throw DamagedRecord("a blob in the catalogue is damaged");
    return static_cast<Form>(form);
}

void writeFrames(BlobWriter& out, const std::vector<Beat>& beats) {
    std::int64_t last = 0;
    std::int64_t lastStep = 0;
    for (const Beat& beat : beats) {
        const std::int64_t step = difference(beat.frame, last);
        out.integer(difference(step, lastStep));
        last = beat.frame;
        lastStep = step;
    }
}

void readFrames(BlobReader& in, std::vector<Beat>& beats) {
    std::int64_t last = 0;
    std::int64_t step = 0;
    for (Beat& beat : beats) {
        step = sum(step, in.integer());
        last = sum(last, step);
        beat.frame = last;
    }
}

void writeTempos(BlobWriter& out, const std::vector<Beat>& beats) {
    const bool isDerived = std::all_of(beats.begin(), beats.end(),
                                       [](const Beat& beat) { return isHundredths(beat.bpm); });
    out.byte(static_cast<std::uint8_t>(isDerived ? Form::derived : Form::whole));
    std::int64_t last = 0;
    for (const Beat& beat : beats) {
        if (!isDerived) {
            out.real(beat.bpm);
            continue;
        }
        out.integer(hundredthsOf(beat.bpm) - last);
        last = hundredthsOf(beat.bpm);
    }
}

void readTempos(BlobReader& in, std::vector<Beat>& beats) {
    const Form form = readForm(in);
    std::int64_t last = 0;
    for (Beat& beat : beats) {
        if (form == Form::whole) {
            beat.bpm = in.real();
            continue;
        }
        last = sum(last, in.integer());
        beat.bpm = static_cast<double>(last) / kPerHundredth;
    }
}

void writeSeconds(BlobWriter& out, const std::vector<Beat>& beats, int rate) {
    const bool isDerived = std::all_of(beats.begin(), beats.end(), [rate](const Beat& beat) {
        return areSameBits(beat.seconds, secondsOf(beat.frame, rate));
    });
    out.byte(static_cast<std::uint8_t>(isDerived ? Form::derived : Form::whole));
    if (isDerived) return;
    for (const Beat& beat : beats) out.real(beat.seconds);
}

void readSeconds(BlobReader& in, std::vector<Beat>& beats, int rate) {
    const Form form = readForm(in);
    for (Beat& beat : beats)
        beat.seconds = form == Form::whole ? in.real() : secondsOf(beat.frame, rate);
}

/** Level and color in one byte: a whole level below 32, a color below 8. */
bool fitsAByte(const WavePoint& point) {
    return point.level >= 0.0F && !std::signbit(point.level) && point.level < kLevels &&
           point.level == std::floor(point.level) && point.color >= 0 && point.color < kColors;
}

}  // namespace

std::string encodeBeats(const std::vector<Beat>& beats, int rate) {
    if (beats.empty()) return {};
    BlobWriter out;
    out.natural(beats.size());
    writeFrames(out, beats);
    for (const Beat& beat : beats) out.integer(beat.numberInBar);
    writeTempos(out, beats);
    writeSeconds(out, beats, rate);
    return out.blob();
}

std::vector<Beat> decodeBeats(std::string_view blob, int rate) {
    if (blob.empty()) return {};
    BlobReader in(blob);
    std::vector<Beat> beats(in.count());
    readFrames(in, beats);
    for (Beat& beat : beats) beat.numberInBar = static_cast<int>(in.integer());
    readTempos(in, beats);
    readSeconds(in, beats, rate);
    in.end();
    return beats;
}

std::string encodeWave(const std::vector<WavePoint>& wave) {
    if (wave.empty()) return {};
    BlobWriter out;
    out.natural(wave.size());
    const bool isDerived = std::all_of(wave.begin(), wave.end(), fitsAByte);
    out.byte(static_cast<std::uint8_t>(isDerived ? Form::derived : Form::whole));
    for (const WavePoint& point : wave) {
        if (isDerived) {
            out.byte(
                static_cast<std::uint8_t>(static_cast<int>(point.level) * kColors + point.color));
        } else {
            out.real(point.level);
        }
    }
    if (!isDerived) {
        for (const WavePoint& point : wave) out.integer(point.color);
    }
    return out.blob();
}

std::vector<WavePoint> decodeWave(std::string_view blob) {
    if (blob.empty()) return {};
    BlobReader in(blob);
    std::vector<WavePoint> wave(in.count());
    const Form form = readForm(in);
    for (WavePoint& point : wave) {
        if (form == Form::whole) {
            point.level = in.shortReal();
            continue;
        }
        const std::uint8_t both = in.byte();
        point.level = static_cast<float>(both / kColors);
        point.color = both % kColors;
    }
    if (form == Form::whole) {
        for (WavePoint& point : wave) point.color = static_cast<int>(in.integer());
    }
    in.end();
    return wave;
}

}  // namespace catalogue
