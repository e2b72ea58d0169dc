// SPDX-License-Identifier: MIT
#include "vamp/TrackPlugin.h"

#include <cmath>
#include <exception>
#include <iostream>
#include <memory>
#include <new>

#include <vamp-sdk/PluginAdapter.h>
#include <vamp/vamp.h>

#include "beatatlas/media.h"
#include "beatatlas/version.h"
#include "vamp/outputs.h"

namespace beatatlas::vamp {

namespace {

constexpr const char* kTempoParameter = "tempo";
constexpr const char* kBarParameter = "beatsperbar";

struct FileRelease {
    void operator()(BA_File* file) const { BA_FileRelease(file); }
};

void complain(const std::string& reason) {
    std::cerr << "Beat Atlas: the track " << reason << '\n';
}

/** A value that a host may have changed in any way, as a whole number within bounds. */
int wholeWithin(float value, int lowest, int highest) {
    if (!(value >= static_cast<float>(lowest))) return lowest;
    if (value >= static_cast<float>(highest)) return highest;
    return static_cast<int>(std::lround(value));
}

}  // namespace

TrackPlugin::TrackPlugin(float inputSampleRate) : Plugin(inputSampleRate) {}

int TrackPlugin::getPluginVersion() const {
    return BEATATLAS_VERSION_NUMBER;
}

Vamp::Plugin::ParameterList TrackPlugin::getParameterDescriptors() const {
    ParameterDescriptor tempo;
    tempo.identifier = kTempoParameter;
    tempo.name = "Tempo";
    tempo.description = "How the tempo is found";
    tempo.minValue = BA_TRACK_TEMPO_CONSTANT;
    tempo.maxValue = BA_TRACK_TEMPO_AUTO;
    tempo.defaultValue = BA_TRACK_TEMPO_AUTO;
    tempo.isQuantized = true;
    tempo.quantizeStep = 1.0F;
    tempo.valueNames = {"Constant", "Varied", "Simple", "Off", "Auto"};

    ParameterDescriptor bar;
    bar.identifier = kBarParameter;
    bar.name = "Beats per Bar";
    bar.description = "With the auto tempo: 3 or 4 if known; 0: to be found";
    bar.minValue = 0.0F;
    bar.maxValue = 4.0F;
    bar.defaultValue = 0.0F;
    bar.isQuantized = true;
    bar.quantizeStep = 1.0F;
    return {tempo, bar};
}

float TrackPlugin::getParameter(std::string identifier) const {
    if (identifier == kTempoParameter) return static_cast<float>(tempo_);
    return identifier == kBarParameter ? static_cast<float>(beatsPerBar_) : 0.0F;
}

void TrackPlugin::setParameter(std::string identifier, float value) {
    if (identifier == kTempoParameter)
        tempo_ = wholeWithin(value, BA_TRACK_TEMPO_CONSTANT, BA_TRACK_TEMPO_AUTO);
    if (identifier != kBarParameter) return;
    const int beats = wholeWithin(value, 0, 4);
    beatsPerBar_ = beats < 3 ? 0 : beats;
}

Vamp::Plugin::OutputList TrackPlugin::getOutputDescriptors() const {
    return describeOutputs();
}

/** Of overlapping blocks only what is new is taken; blocks with gaps between them are refused. */
bool TrackPlugin::initialise(std::size_t channels, std::size_t step, std::size_t block) {
    if (channels < getMinChannelCount() || channels > getMaxChannelCount()) return false;
    if (step == 0 || step > block) return false;
    channels_ = channels;
    step_ = step;
    reset();
    return true;
}

void TrackPlugin::reset() {
    samples_.clear();
    isFull_ = false;
}

Vamp::Plugin::FeatureSet TrackPlugin::process(const float* const* inputBuffers,
                                              Vamp::RealTime timestamp) {
    if (channels_ == 0 || isFull_) return {};
    if (samples_.empty()) start_ = timestamp;
    try {
        for (std::size_t frame = 0; frame < step_; ++frame)
            for (std::size_t channel = 0; channel < channels_; ++channel)
                samples_.push_back(inputBuffers[channel][frame]);
    } catch (const std::bad_alloc&) {
        isFull_ = true;
        samples_ = {};
        complain("is too long for the memory there is");
    }
    return {};
}

BA_TrackOptions TrackPlugin::options() const {
    BA_TrackOptions options;
    BA_TrackOptionsInit(&options, sizeof options);
    options.tempo = tempo_;
    options.beats_per_bar = beatsPerBar_;
    return options;
}

/** No exception may reach the host, which need not be written in C++. */
Vamp::Plugin::FeatureSet TrackPlugin::getRemainingFeatures() {
    if (samples_.empty()) return {};
    try {
        return analyze();
    } catch (const std::exception& error) {
        complain(std::string("cannot be analysed: ") + error.what());
    } catch (...) {
        complain("cannot be analysed");
    }
    return {};
}

Vamp::Plugin::FeatureSet TrackPlugin::analyze() const {
    const BA_TrackOptions wanted = options();
    const int rate = wholeWithin(m_inputSampleRate, 1, 1 << 24);
    const auto frames = static_cast<std::int64_t>(samples_.size() / channels_);
    BA_File* outcome = nullptr;
    const int status = BA_FileAnalyzeSamples(samples_.data(), rate, static_cast<int>(channels_),
                                             frames, &wanted, &outcome);
    const std::unique_ptr<BA_File, FileRelease> file(outcome);
    if (status != BA_FILE_OK) {
        complain(file ? BA_FileReason(file.get()) : "cannot be analysed in the memory there is");
        return {};
    }
    return featuresOf(track::resultOf(BA_FileTrack(file.get())), start_);
}

}  // namespace beatatlas::vamp

/** Where hosts ask which plugins there are. */
extern "C" __attribute__((visibility("default"))) const VampPluginDescriptor*
vampGetPluginDescriptor(unsigned int version, unsigned int index) {
    static Vamp::PluginAdapter<beatatlas::vamp::TrackPlugin> adapter;
    return version >= 1 && index == 0 ? adapter.getDescriptor() : nullptr;
}
