// SPDX-License-Identifier: MIT
#include "golden/utilityRecord.h"

#include <cfenv>
#include <cinttypes>
#include <cstdint>
#include <vector>

#include "beatatlas/dsp.h"
#include "beatatlas/utilities.h"
#include "support/Digest.h"
#include "support/TrackSynth.h"

namespace beatatlas::test {

namespace {

constexpr int kRate = 44100;
constexpr int kStep = 10;  // to 4,410 Hz, what the resampler is made for

std::uint64_t digestOf(const std::vector<float>& samples) {
    Digest digest;
    digest.add(samples);
    return digest.value();
}

std::vector<float> monoTrack() {
    TrackPlan plan;
    plan.sampleRate = kRate;
    plan.lengthFrames = kRate * 20LL;
    plan.bpm = 110.0;
    plan.concertPitchHz = 441.0;
    plan.tonic = 5;
    return TrackSynth(plan).renderAll().left;
}

std::vector<float> thinnedOut(std::vector<float> mono) {
    std::vector<float> thin(mono.size() / kStep - 1);
    resample2(thin.data(), static_cast<long>(thin.size()), mono.data(),
              static_cast<long>(mono.size()), 0.1F, kStep, 0);
    return thin;
}

void recordPitchAndKey(std::FILE* out, std::vector<float> thin) {
    const auto n = static_cast<int>(thin.size());
    for (int mode = 0; mode <= 4; ++mode) {
        const int pitch = PitchDetect(thin.data(), n, 4410.0F, 1, mode);
        const int key =
            KeyCodeScale(nullptr, thin.data(), n, 4410.0F, static_cast<float>(pitch), 1, mode, "");
        std::fprintf(out, "mode %d: pitch %d, key %d\n", mode, pitch, key);
    }
}

void recordCuts(std::FILE* out, std::vector<float> mono) {
    std::vector<float> cut(mono.size());
    for (int div : {1, 4})
        for (int mode : {0, 3}) {
            CutBeats(cut.data(), mono.data(), static_cast<int>(mono.size()), kRate, div, mode);
            std::fprintf(out, "cut by %d in mode %d %016" PRIx64 "\n", div, mode, digestOf(cut));
        }
}

void recordTransform(std::FILE* out, const std::vector<float>& mono) {
    constexpr int kLength = 2048;
    std::vector<float> re(mono.end() - kLength, mono.end());
    std::vector<float> im(kLength, 0.0F);
    fft_less_normalize(kLength, re.data(), im.data());
    std::fprintf(out, "transform %016" PRIx64 " %016" PRIx64 "\n", digestOf(re), digestOf(im));
}

void recordInCurrentMode(std::FILE* out, const std::vector<float>& mono) {
    const std::vector<float> thin = thinnedOut(mono);
    std::fprintf(out, "resampled %016" PRIx64 "\n", digestOf(thin));
    recordPitchAndKey(out, thin);
    recordCuts(out, mono);
    recordTransform(out, mono);
}

}  // namespace

void recordUtilities(std::FILE* out) {
    const std::vector<float> mono = monoTrack();
    const int callersMode = std::fegetround();
    for (int mode : {FE_TONEAREST, FE_TOWARDZERO}) {
        std::fprintf(out, "== utilities, rounding %s\n",
                     mode == FE_TONEAREST ? "to nearest" : "toward zero");
        std::fesetround(mode);
        recordInCurrentMode(out, mono);
        std::fesetround(callersMode);
    }
}

}  // namespace beatatlas::test
