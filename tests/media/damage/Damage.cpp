// SPDX-License-Identifier: MIT
#include "damage/Damage.h"

#include <algorithm>

namespace test {

namespace {

constexpr std::size_t kMostHeaderBytes = 5000;

}  // namespace

const std::vector<DamageFormat>& damageFormats() {
    static const std::vector<DamageFormat> kFormats = {
        {"wav", {"wav", "pcm_s16le"}},
        {"w64", {"w64", "pcm_s16le"}},
        {"aiff", {"aiff", "pcm_s16be"}},
        {"au", {"au", "pcm_s16be"}},
        {"caf", {"caf", "pcm_s16be"}},
        {"caf alac", {"caf", "alac"}},
        {"flac", {"flac", "flac"}},
        {"ogg vorbis", {"ogg", "libvorbis"}},
        {"ogg opus", {"ogg", "libopus"}, Clock::times, 48000},
        {"ogg flac", {"ogg", "flac"}},
        {"ogg speex", {"ogg", "libspeex"}, Clock::times, 32000},
        {"mp3 CBR", {"mp3", "libmp3lame"}, Clock::bytes},
        {"mp3 bare", {"mp3", "libmp3lame", "write_xing=0"}, Clock::bytes},
        {"mp3 VBR",
         {"mp3", "libmp3lame", "", false, "", 192000, "flags=+qscale:global_quality=236"},
         Clock::bytes},
        {"mp2", {"mp2", "mp2"}, Clock::bytes},
        {"adts aac", {"adts", "aac"}, Clock::bytes},
        {"ac3", {"ac3", "ac3"}, Clock::bytes},
        {"eac3", {"eac3", "eac3"}, Clock::bytes},
        {"m4a aac", {"ipod", "aac"}},
        {"m4a aac, index first", {"ipod", "aac", "movflags=faststart"}},
        {"m4a aac, fragments",
         {"mp4", "aac",
          "movflags=frag_keyframe+empty_moov+default_base_moof:frag_duration=500000"}},
        {"m4a alac", {"ipod", "alac"}},
        {"mov pcm", {"mov", "pcm_s16le"}},
        {"mka vorbis", {"matroska", "libvorbis"}},
        {"mka flac", {"matroska", "flac"}},
        {"mka aac", {"matroska", "aac"}},
        {"mka mp3", {"matroska", "libmp3lame"}},
        {"mka pcm", {"matroska", "pcm_s16le"}},
        {"webm opus", {"webm", "libopus"}, Clock::times, 48000},
        {"ts aac", {"mpegts", "aac"}},
        {"ts mp2", {"mpegts", "mp2"}},
        {"ts ac3", {"mpegts", "ac3"}},
        {"flv aac", {"flv", "aac"}},
        {"flv mp3", {"flv", "libmp3lame"}},
        {"asf wma2", {"asf", "wmav2"}},
        {"asf wma1", {"asf", "wmav1"}},
        {"wv", {"wv", "wavpack"}},
        {"tta", {"tta", "tta"}},
        {"avi mp3", {"avi", "libmp3lame"}},
        {"avi pcm", {"avi", "pcm_s16le"}},
        {"rm ac3", {"rm", "ac3"}},
    };
    return kFormats;
}

const std::vector<DamageKind>& damageKinds() {
    using What = DamageKind::What;
    static const std::vector<DamageKind> kKinds = {
        {"flips 1e-7", What::flips, 1e-7},   {"flips 1e-6", What::flips, 1e-6},
        {"flips 1e-5", What::flips, 1e-5},   {"flips 1e-4", What::flips, 1e-4},
        {"flips 1e-3", What::flips, 1e-3},   {"zeroed", What::zeros},
        {"removed", What::removal},          {"doubled", What::doubling},
        {"beginning", What::zeroedBeginning}};
    return kKinds;
}

double DamageNumbers::next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return static_cast<double>(state_) / 4294967296.0;
}

std::size_t DamageNumbers::below(std::size_t count) {
    return std::min(count - 1, static_cast<std::size_t>(next() * static_cast<double>(count)));
}

Sound unmistakableSound(int rate, double seconds) {
    DamageNumbers numbers(99);
    std::vector<float> noise(static_cast<std::size_t>(seconds * rate));
    double low = 0.0;
    double lower = 0.0;
    double loudness = 0.5;
    const double smoothing = 9000.0 / rate;  // two corners of some 1,500 Hz
    for (std::size_t i = 0; i < noise.size(); ++i) {
        if (i % 8192 == 0) loudness = 0.3 + 1.2 * numbers.next();
        low += smoothing * (numbers.next() * 2.0 - 1.0 - low);
        lower += smoothing * (low - lower);
        noise[i] = static_cast<float>(lower * loudness);
    }
    return {rate, {noise, noise}};
}

std::string damaged(std::string bytes, const DamageKind& kind, std::uint32_t seed) {
    DamageNumbers numbers(seed);
    for (int i = 0; i < 8; ++i) numbers.next();
    const std::size_t size = bytes.size();
    if (kind.what == DamageKind::What::flips) {
        const auto flips = static_cast<std::size_t>(static_cast<double>(size) * kind.rate + 0.5);
        for (std::size_t i = 0; i < std::max<std::size_t>(flips, 1); ++i)
            bytes[numbers.below(size)] ^= static_cast<char>(1U << numbers.below(8));
        return bytes;
    }
    const auto length =
        static_cast<std::size_t>(static_cast<double>(size) * (0.02 + 0.03 * numbers.next()));
    // Behind headers of a few thousand bytes, the first packets.
    const std::size_t at = kind.what == DamageKind::What::zeroedBeginning
                               ? kMostHeaderBytes
                               : size / 10 + numbers.below(size * 7 / 8 - size / 10 - length);
    switch (kind.what) {
    case DamageKind::What::zeros:
    case DamageKind::What::zeroedBeginning:
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), length, '\0');
        break;
    case DamageKind::What::removal:
        bytes.erase(at, length);
        break;
    default:
        bytes.insert(at, bytes.substr(at, length));
    }
    return bytes;
}

}  // namespace test
