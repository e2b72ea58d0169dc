// SPDX-License-Identifier: MIT
#include "support/encoderFiles.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "media/ffmpeg.h"
#include "support/ClickPattern.h"

namespace test {

namespace {

constexpr std::array kRates = {44100, 48000, 32000, 22050, 16000, 8000};

// Encoders take what they can of this, but for G.723.1, which has two rates of its own, and DTS,
// which needs more.
constexpr int kUsualBitRate = 128000;
constexpr int kG723BitRate = 6300;
constexpr int kDtsBitRate = 768000;

/** Muxers of bare streams write whatever they are given, also of other codecs. */
bool isForeignBareStream(const ContainerKind& container, const std::string& encoder) {
    const AVOutputFormat* muxer = av_guess_format(container.muxer, nullptr, nullptr);
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder.c_str());
    if (muxer == nullptr || codec == nullptr) return true;
    return (muxer->flags & AVFMT_NOTIMESTAMPS) != 0 && muxer->audio_codec != codec->id &&
           avformat_query_codec(muxer, codec->id, FF_COMPLIANCE_EXPERIMENTAL) != 1;
}

}  // namespace

const std::vector<ContainerKind>& everyContainer() {
    static const std::vector<ContainerKind> kContainers = {
        {"ADTS", "adts"},
        {"LATM", "latm"},
        {"AC-3", "ac3"},
        {"E-AC-3", "eac3"},
        {"DTS", "dts"},
        {"AIFF", "aiff"},
        {"ASF", "asf"},
        {"AU", "au"},
        {"AVI", "avi"},
        {"CAF", "caf"},
        {"FLAC", "flac"},
        {"FLV", "flv"},
        {"Matroska", "matroska"},
        {"WebM", "webm"},
        {"MOV", "mov"},
        {"MOV without edit list", "mov", "use_editlist=0"},
        {"MP4", "mp4"},
        {"MP4 without edit list", "mp4", "use_editlist=0"},
        {"MP4 in fragments", "mp4", "movflags=frag_keyframe+empty_moov"},
        {"MP4 in fragments, late header", "mp4", "movflags=frag_keyframe+empty_moov+delay_moov"},
        {"M4A", "ipod"},
        {"3GP", "3gp"},
        {"MP3", "mp3"},
        {"MP3 without Xing", "mp3", "write_xing=0"},
        {"MP2", "mp2"},
        {"MPEG-PS", "mpeg"},
        {"VOB", "vob"},
        {"MPEG-TS", "mpegts"},
        {"Ogg", "ogg"},
        {"RealMedia", "rm"},
        {"TTA", "tta"},
        {"W64", "w64"},
        {"WAV", "wav"},
        {"WavPack", "wv"},
    };
    return kContainers;
}

std::vector<std::string> everyEncoder() {
    std::vector<std::string> names;
    void* place = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&place)) {
        if (av_codec_is_encoder(codec) != 0 && codec->type == AVMEDIA_TYPE_AUDIO)
            names.emplace_back(codec->name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<int> ratesOf(const std::string& encoder) {
    const AVCodec* codec = avcodec_find_encoder_by_name(encoder.c_str());
    std::vector<int> rates;
    for (const int rate : kRates) {
        const int* supported = codec == nullptr ? nullptr : codec->supported_samplerates;
        while (supported != nullptr && *supported != 0 && *supported != rate) ++supported;
        if (supported == nullptr || *supported == rate) rates.push_back(rate);
    }
    return rates;
}

bool writeClickPattern(const std::string& path, const ContainerKind& container,
                       const std::string& encoder, int rate) {
    if (isForeignBareStream(container, encoder)) return false;
    FileKind kind{container.muxer, encoder.c_str(), container.options};
    kind.bitRate = encoder == "g723_1" ? kG723BitRate
                   : encoder == "dca"  ? kDtsBitRate
                                       : kUsualBitRate;
    for (const int channels : {2, 1}) {
        try {
            writeAudioFile(path, kind, clickPattern(rate, channels));
            return true;
        } catch (const std::runtime_error&) {
            // Not this way, then.
        }
    }
    return false;
}

}  // namespace test
