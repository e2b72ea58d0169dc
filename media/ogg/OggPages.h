// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "media/FileInput.h"

namespace media {

/** A page of an Ogg file (RFC 3533). */
struct OggPage {
    /** In the file. */
    std::int64_t offset = 0;
    std::int64_t end = 0;
    /** The end of the last packet that ends on this page; -1: none does. */
    std::int64_t granule = -1;
    std::uint32_t serial = 0;
    std::uint32_t number = 0;
    bool isContinued = false;
    bool isFirst = false;
    bool isLast = false;
    /** Whether its checksum holds. */
    bool isSound = false;
    std::string lacing;
    std::string body;
};

/** Reads the pages of an Ogg file in turn. A page whose checksum does not hold is still accepted
 *  when the next one begins where it ends: most of its packets are intact. Bytes that belong to no
 *  page are skipped. */
class OggPages {
public:
    explicit OggPages(const FileInput& input) : input_(input) {}

    /** @return nothing at the end */
    std::optional<OggPage> next();

    /** Whether bytes had to be skipped before the last page. */
    bool hasSkipped() const { return hasSkipped_; }

private:
    const char* at(std::int64_t offset, std::size_t count);
    std::optional<OggPage> read(std::int64_t offset);
    bool isFollowed(std::int64_t end);
    std::int64_t nextCapture(std::int64_t from);

    const FileInput& input_;
    std::string window_;
    std::int64_t windowAt_ = 0;
    std::int64_t offset_ = 0;
    bool hasSkipped_ = false;
};

/** What reading through all pages of a file shows. */
struct OggSurvey {
    /** Whether all pages are present, in order and undamaged. */
    bool isSound = true;
    /** Whether one stream follows another. */
    bool isChained = false;
    /** Whether the last page is marked as the last. */
    bool hasEnd = false;
};

OggSurvey surveyOgg(const FileInput& input);

}  // namespace media
