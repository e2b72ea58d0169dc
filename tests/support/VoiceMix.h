// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace beatatlas::test {

/** The frames from `first` up to, not including, `end`. */
struct Span {
    std::int64_t first = 0;
    std::int64_t end = 0;
};

/** A short segment of both channels in which voices are added up, full scale ±1. */
class VoiceMix {
public:
    static constexpr std::int64_t kMaxFrames = 1024;

    /** @param count 1 … kMaxFrames
     *  @param trackEnd from here on no voice sounds */
    VoiceMix(std::int64_t from, std::int64_t count, std::int64_t trackEnd)
        : from_(from), end_(from + count), soundEnd_(std::min(end_, trackEnd)) {}

    std::int64_t from() const { return from_; }
    std::int64_t end() const { return end_; }

    /** Adds sampleAt(frame) for the part of a voice that lies in this segment.
     *
     *  @param pan -1 left … 1 right: the far channel loses that share, the near one keeps its
     *             level. */
    template <typename SampleAt>
    void add(Span voice, double gain, double pan, SampleAt sampleAt) {
        if (gain == 0.0) return;
        const double leftGain = pan > 0.0 ? gain * (1.0 - pan) : gain;
        const double rightGain = pan < 0.0 ? gain * (1.0 + pan) : gain;
        const std::int64_t stop = std::min(voice.end, soundEnd_);
        for (std::int64_t frame = std::max(voice.first, from_); frame < stop; ++frame) {
            const double sample = sampleAt(frame);
            const auto i = static_cast<std::size_t>(frame - from_);
            left_[i] += sample * leftGain;
            right_[i] += sample * rightGain;
        }
    }

    /** Writes the sums as whole numbers within ±32767. */
    void write(double level, float* left, float* right) const;

private:
    using Channel = std::array<double, static_cast<std::size_t>(kMaxFrames)>;

    std::int64_t from_;
    std::int64_t end_;
    std::int64_t soundEnd_;
    Channel left_{};
    Channel right_{};
};

}  // namespace beatatlas::test
