// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "media/FileInput.h"

namespace media {

/** A page of an Ogg file (RFC 3533). */
struct OggPage {
    std::int64_t offset = 0;  ///< in the file
    std::int64_t end = 0;
    std::int64_t granule = -1;  ///< where the last packet that ends on it ends; -1: none does
    std::uint32_t serial = 0;
    std::uint32_t number = 0;
    bool isContinued = false;
    bool isFirst = false;
    bool isLast = false;
    bool isSound = false;  ///< its checksum holds
    std::string lacing;
    std::string body;
};

/** Reads the pages of an Ogg file in turn. A page whose checksum does not hold is one all the same
 *  when the next begins where it ends: most of its packets are as they were. What is no page is
 *  passed over. */
class OggPages {
public:
    explicit OggPages(const FileInput& input) : input_(input) {}

    /** @return nothing at the end */
    std::optional<OggPage> next();

    /** Whether bytes had to be passed over before the last page. */
    bool hasSkipped() const { return hasSkipped_; }

private:
    const char* at(std::int64_t offset, std::size_t count);
    std::optional<OggPage> read(std::int64_t offset);
    bool isFollowed(std::int64_t end);
    std::int64_t nextCapture(std::int64_t from);

    const FileInput& input_;
    std::string window_;
    std::int64_t windowAt_ = 0;
    std::int64_t place_ = 0;
    bool hasSkipped_ = false;
};

/** What a look through all pages of a file shows. */
struct OggSurvey {
    bool isSound = true;     ///< every page is there, in order, as it was written
    bool isChained = false;  ///< one stream after the other
    bool hasEnd = false;     ///< its last page says that it is the last
};

OggSurvey surveyOgg(const FileInput& input);

}  // namespace media
