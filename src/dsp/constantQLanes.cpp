// SPDX-License-Identifier: MIT
#include "dsp/constantQLanes.h"

#include <algorithm>
#include <iterator>

#include "dsp/lanes/transpose.h"
#include "dsp/lanes/vectorLanes.h"

namespace beatatlas {

namespace {

/** Samples of each frame that are laid out at a time: with 64 frames 32 KB. */
constexpr int kBlock = 128;
constexpr int kWorthLanes = 3;              // fewer frames are summed one by one
constexpr std::ptrdiff_t kMostFrames = 64;  // four vectors of 16

/** What correlateFrames() is asked. */
struct Request {
    const std::vector<ConstantQBin>* bins;
    int frameLength;
    const float* samples;
    std::ptrdiff_t hop;
    int frames;
    ConstantQSums* sums;
    float* block;    // kBlock × kMostFrames
    float* running;  // per bin the cosine sums of kMostFrames frames, then the sine sums
};

/** Frames first, first + 1 … of a request, as many as there are lanes. */
struct Group {
    int first;
    std::ptrdiff_t lanes;
};

BEATATLAS_LANES const float* frameOfLane(const Request& request, const Group& group,
                                         std::ptrdiff_t lane) {
    const auto frame = std::min<std::ptrdiff_t>(group.first + lane, request.frames - 1);
    return request.samples + (frame * request.hop);
}

/** block[i × lanes + lane] = sample first + i of the lane's frame. */
BEATATLAS_LANES void layOut(const Request& request, const Group& group, int first, int count) {
    for (std::ptrdiff_t lane = 0; lane < group.lanes; lane += 4) {
        const float* frames[4];
        for (int f = 0; f < 4; ++f) frames[f] = frameOfLane(request, group, lane + f) + first;
        float* to = request.block + lane;
        int i = 0;
        for (; i + 4 <= count; i += 4) {
            const float* from[4] = {frames[0] + i, frames[1] + i, frames[2] + i, frames[3] + i};
            float* at[4] = {to, to + group.lanes, to + (2 * group.lanes), to + (3 * group.lanes)};
            transposeFour(from, at);
            to += 4 * group.lanes;
        }
        for (; i < count; ++i, to += group.lanes)
            for (int f = 0; f < 4; ++f) to[f] = frames[f][i];
    }
}

/** Adds count points of a kernel to the sums of kVectors vectors of frames. */
template <class Vector, std::size_t kVectors>
BEATATLAS_LANES void addPoints(const float* kernel, const float* x, int count, float* running) {
    constexpr std::ptrdiff_t kLanes = sizeof(Vector) / sizeof(float);
    constexpr auto kFrames = static_cast<std::ptrdiff_t>(kVectors) * kLanes;
    Vector re[kVectors];
    Vector im[kVectors];
    for (std::size_t v = 0; v < kVectors; ++v) {
        loadLanes(re[v], running + (static_cast<std::ptrdiff_t>(v) * kLanes));
        loadLanes(im[v], running + kMostFrames + (static_cast<std::ptrdiff_t>(v) * kLanes));
    }
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const float cosine = kernel[2 * i];
        const float sine = kernel[(2 * i) + 1];
        for (std::size_t v = 0; v < kVectors; ++v) {
            Vector sample;
            loadLanes(sample, x + (i * kFrames) + (static_cast<std::ptrdiff_t>(v) * kLanes));
            re[v] += sample * cosine;
            im[v] += sample * sine;
        }
    }
    for (std::size_t v = 0; v < kVectors; ++v) {
        storeLanes(re[v], running + (static_cast<std::ptrdiff_t>(v) * kLanes));
        storeLanes(im[v], running + kMostFrames + (static_cast<std::ptrdiff_t>(v) * kLanes));
    }
}

BEATATLAS_LANES float* runningOf(const Request& request, std::size_t bin) {
    return request.running + (static_cast<std::ptrdiff_t>(bin) * 2 * kMostFrames);
}

BEATATLAS_LANES void writeSums(const Request& request, const Group& group) {
    const auto frames = std::min<std::ptrdiff_t>(group.lanes, request.frames - group.first);
    for (std::size_t bin = 0; bin < request.bins->size(); ++bin) {
        const float* running = runningOf(request, bin);
        ConstantQSums* sums = request.sums + (bin * static_cast<std::size_t>(request.frames)) +
                              static_cast<std::size_t>(group.first);
        for (std::ptrdiff_t f = 0; f < frames; ++f)
            sums[f] = {running[f], running[kMostFrames + f]};
    }
}

template <class Vector, std::size_t kVectors>
BEATATLAS_LANES void correlateGroup(const Request& request, int first) {
    const Group group{first, kVectors * sizeof(Vector) / sizeof(float)};
    std::fill_n(request.running, std::ssize(*request.bins) * 2 * kMostFrames, 0.0F);
    for (int from = 0; from < request.frameLength; from += kBlock) {
        const int end = std::min(from + kBlock, request.frameLength);
        layOut(request, group, from, end - from);
        for (std::size_t b = 0; b < request.bins->size(); ++b) {
            const ConstantQBin& bin = (*request.bins)[b];
            const int begin = std::max(from, bin.start);
            const int count = std::min(end, bin.start + bin.length) - begin;
            if (count <= 0) continue;
            addPoints<Vector, kVectors>(
                bin.kernel + (2 * static_cast<std::ptrdiff_t>(begin - bin.start)),
                request.block + (static_cast<std::ptrdiff_t>(begin - from) * group.lanes), count,
                runningOf(request, b));
        }
    }
    writeSums(request, group);
}

template <std::size_t kWidth>
struct FrameLanes {
    using Vector = Lanes<float, 2 * kWidth>;
    static constexpr int kLanes = 2 * kWidth;

    BEATATLAS_LANES static void run(const Request* request) {
        int first = 0;
        for (; request->frames - first > 2 * kLanes; first += 4 * kLanes)
            correlateGroup<Vector, 4>(*request, first);
        for (; request->frames - first > kLanes; first += 2 * kLanes)
            correlateGroup<Vector, 2>(*request, first);
        for (; request->frames > first; first += kLanes) correlateGroup<Vector, 1>(*request, first);
    }
};

}  // namespace

void correlateFrames(const std::vector<ConstantQBin>& bins, int frameLength, const float* samples,
                     std::ptrdiff_t hop, int frames, ConstantQSums* sums) {
    if (frames < kWorthLanes) {
        for (const ConstantQBin& bin : bins)
            for (int f = 0; f < frames; ++f) *sums++ = correlate(bin, samples + (f * hop));
        return;
    }
    std::vector<float> block(static_cast<std::size_t>(kBlock * kMostFrames));
    std::vector<float> running(bins.size() * 2 * static_cast<std::size_t>(kMostFrames));
    const Request request{&bins,  frameLength, samples,      hop,
                          frames, sums,        block.data(), running.data()};
    runInLanes<FrameLanes>(&request);
}

}  // namespace beatatlas
