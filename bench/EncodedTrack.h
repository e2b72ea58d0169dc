// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "support/StereoTrack.h"

namespace beatatlas::bench {

/** How a track is encoded: the libavcodec encoder, and the file name extension, which selects the
 *  container. */
struct Encoding {
    std::string encoder;
    std::string ending;
    /** Per second; 0 for encoders without a bit rate. */
    std::int64_t bitRate;
};

/** A track in a file of its own, made by FFmpeg's libraries and removed with the object. */
class EncodedTrack {
public:
    /** Returns nothing if this libavcodec lacks the encoder.
     *  @throws std::runtime_error if encoding fails
     *  @param track  44,100 Hz, 16-bit scale */
    static std::optional<EncodedTrack> make(const test::StereoTrack& track, const Encoding& how);

    /** The same track repeated, without encoding it again. @param ending the one it was made
     *  with */
    EncodedTrack repeated(int times, const std::string& ending) const;

    EncodedTrack(EncodedTrack&& other) noexcept;
    EncodedTrack& operator=(EncodedTrack&&) = delete;
    EncodedTrack(const EncodedTrack&) = delete;
    EncodedTrack& operator=(const EncodedTrack&) = delete;
    ~EncodedTrack();

    const std::string& path() const { return path_; }

private:
    explicit EncodedTrack(std::string path) : path_(std::move(path)) {}

    std::string path_;
};

}  // namespace beatatlas::bench
