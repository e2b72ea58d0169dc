// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "support/StereoTrack.h"

namespace beatatlas::bench {

/** How a track is encoded: by one of libavcodec's encoders, into a file of the kind its ending names. */
struct Encoding {
    std::string encoder;
    std::string ending;
    std::int64_t bitRate;  ///< per second; 0 where the encoder knows none
};

/** A track in a file of its own, made by FFmpeg's libraries and removed with the object. */
class EncodedTrack {
public:
    /** Nothing when this libavcodec lacks the encoder; std::runtime_error when encoding fails.
     *  @param track  44,100 Hz, 16-bit scale */
    static std::optional<EncodedTrack> make(const test::StereoTrack& track, const Encoding& how);

    /** The same track so many times over, without encoding it again. @param ending  as it was made with */
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
