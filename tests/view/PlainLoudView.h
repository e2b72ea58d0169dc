// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::test {

/** The loudness view of a whole track, written down sample by sample and step by step with no
 *  thought of speed: the oracle of LoudViewMaker. Shares no code with it; the filters too are plain
 *  difference equations. */
class PlainLoudView {
public:
    struct Point {
        float level;
        int color;
    };

    PlainLoudView(int rate, std::int64_t len);

    /** Feeds the whole track, or a stretch of whole blocks of it. Bands in the order low, mid,
     *  high; an empty one is filtered from the input. */
    void feed(const std::vector<float>& in, const std::array<std::vector<float>, 3>& given = {});

    std::vector<Point> loud;  // 400, uncoloured points have colour 5
    std::vector<Point> dots;  // 100
    int loudReady = 0;
    int dotsReady = 0;

private:
    struct Record {
        float level = 0.0F;
        float level900 = 0.0F;
    };

    struct Detector {
        std::int64_t count = 0;
        int records = 0;
        std::int64_t chunks = 0;
        bool end = false;
    };

    struct Sum {
        int summed = 0;
        int index = 0;
        float running = 0.0F;
        int dotRunning = 0;
        float carry = 0.0F;
        std::int64_t previousChunk = 0;
    };

    using Samples = std::vector<float>;

    void chunk(const Samples& in, const std::array<Samples, 3>& bands);
    void detect(int band, const Samples& x);
    bool isLast(const Detector& d, std::size_t m, std::size_t i) const;
    void detectDecimated(int band, const Samples& x);
    void average(const Samples& x);
    void averageToPoint();
    void sumBand(int band);
    void peakSum(int band, int from, int to);
    bool slotBoundary(Sum& s, std::vector<float>& points) const;
    void dotsSum(int band);
    void finaliseLoud(int ready);
    void finaliseDots(int ready);

    double rate_;
    std::int64_t len_;
    std::int64_t block_;
    std::int64_t chunkCounter_ = 0;
    float p2_;
    float pa_;
    std::int64_t pd_;
    std::array<std::vector<Record>, 3> records_;
    std::array<Detector, 5> detectors_;  // low, mid, high; decimated low, mid
    std::array<Sum, 5> sums_;
    std::array<std::vector<float>, 3> loudSums_;
    std::vector<float> averages_;
    std::array<std::vector<int>, 2> dotsSums_;
    bool lowPeakFlag_ = false;
    float averageSum_ = 0.0F;
    int averageChunks_ = 0;
    bool mergePending_ = false;
    bool merge_ = false;
    bool produced_ = false;
    float averageValue_ = 0.0F;
    float averageRunning_ = 0.0F;
    int averageIndex_ = 0;
    int lastAveraged_ = 0;
};

/** A cascade of cookbook sections over a whole signal, rectified: the view's own low, mid or high
 *  band. */
std::vector<float> plainBand(int band, int rate, const std::vector<float>& in);

}  // namespace beatatlas::test
