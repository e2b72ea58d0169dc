// SPDX-License-Identifier: MIT
#include "support/WavWriter.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace beatatlas::test {

namespace {

constexpr int kChannels = 2;
constexpr int kBytesPerFrame = 4;
constexpr std::uint32_t kHeaderBytesAfterSize = 36;

void put16(std::vector<char>& bytes, std::uint32_t value) {
    bytes.push_back(static_cast<char>(value & 0xFFU));
    bytes.push_back(static_cast<char>((value >> 8) & 0xFFU));
}

void put32(std::vector<char>& bytes, std::uint32_t value) {
    put16(bytes, value & 0xFFFFU);
    put16(bytes, value >> 16);
}

void putText(std::vector<char>& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

std::vector<char> headerOf(std::uint32_t sampleRate, std::uint32_t dataBytes) {
    std::vector<char> header;
    putText(header, "RIFF");
    put32(header, kHeaderBytesAfterSize + dataBytes);
    putText(header, "WAVEfmt ");
    put32(header, 16);  // bytes of the format that follow
    put16(header, 1);   // integer samples
    put16(header, kChannels);
    put32(header, sampleRate);
    put32(header, sampleRate * kBytesPerFrame);
    put16(header, kBytesPerFrame);
    put16(header, 16);  // bits of a sample
    putText(header, "data");
    put32(header, dataBytes);
    return header;
}

std::uint32_t sampleBits(float value) {
    const auto whole = static_cast<std::int32_t>(std::clamp(value, -32767.0F, 32767.0F));
    return static_cast<std::uint32_t>(whole) & 0xFFFFU;
}

}  // namespace

bool WavWriter::open(const std::string& path, int sampleRate, std::int64_t frames) {
    constexpr std::int64_t kMostFrames =
        (std::numeric_limits<std::uint32_t>::max() - kHeaderBytesAfterSize) / kBytesPerFrame;
    if (frames < 0 || frames > kMostFrames) return false;
    file_.open(path, std::ios::binary | std::ios::trunc);
    const std::vector<char> header = headerOf(static_cast<std::uint32_t>(sampleRate),
                                              static_cast<std::uint32_t>(frames) * kBytesPerFrame);
    file_.write(header.data(), static_cast<std::streamsize>(header.size()));
    return file_.good();
}

void WavWriter::write(const float* left, const float* right, std::int64_t count) {
    bytes_.clear();
    for (std::int64_t i = 0; i < count; ++i) {
        put16(bytes_, sampleBits(left[i]));
        put16(bytes_, sampleBits(right[i]));
    }
    file_.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
}

bool WavWriter::close() {
    file_.close();
    return file_.good();
}

}  // namespace beatatlas::test
