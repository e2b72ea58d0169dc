// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <vamp-sdk/Plugin.h>

#include "beatatlas/track.h"

namespace beatatlas::vamp {

/** The analysis of whole tracks for hosts of Vamp plugins. It keeps the audio, 8 bytes for each
 *  stereo frame, and shows all results at the end: tempo and beats are decided by the whole
 *  track. */
class TrackPlugin : public Vamp::Plugin {
public:
    explicit TrackPlugin(float inputSampleRate);

    std::string getIdentifier() const override { return "beatatlas"; }
    std::string getName() const override { return "Beat Atlas"; }
    std::string getDescription() const override {
        return "Tempo, beat grid numbered into bars, key, and waveform overviews";
    }
    std::string getMaker() const override { return "Beat Atlas"; }
    std::string getCopyright() const override { return "MIT licence"; }
    int getPluginVersion() const override;
    InputDomain getInputDomain() const override { return TimeDomain; }
    std::size_t getPreferredBlockSize() const override { return kBlockFrames; }
    std::size_t getPreferredStepSize() const override { return kBlockFrames; }
    std::size_t getMinChannelCount() const override { return 1; }
    std::size_t getMaxChannelCount() const override { return 2; }

    ParameterList getParameterDescriptors() const override;
    float getParameter(std::string identifier) const override;
    void setParameter(std::string identifier, float value) override;
    OutputList getOutputDescriptors() const override;

    bool initialise(std::size_t channels, std::size_t step, std::size_t block) override;
    void reset() override;
    FeatureSet process(const float* const* inputBuffers, Vamp::RealTime timestamp) override;
    FeatureSet getRemainingFeatures() override;

private:
    static constexpr std::size_t kBlockFrames = 1024;

    BA_TrackOptions options() const;
    FeatureSet analyze() const;

    int tempo_ = BA_TRACK_TEMPO_AUTO;
    int beatsPerBar_ = 0;
    std::size_t channels_ = 0;
    std::size_t step_ = 0;
    std::vector<float> samples_;  // the channels of a frame one after the other
    bool isFull_ = false;         // there was no memory for more
    Vamp::RealTime start_;
};

}  // namespace beatatlas::vamp
