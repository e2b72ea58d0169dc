// SPDX-License-Identifier: MIT
#pragma once

#include "media/tags/TagFields.h"

namespace TagLib::Ogg {
class XiphComment;
}

namespace media {

/** Vorbis comments, as in FLAC, Ogg Vorbis and Opus: BPM has the exact tempo, INITIALKEY the key.
 *  Capitals do not count in their names. */
class XiphFields : public TagFields {
public:
    /** @param comment  outlives this */
    explicit XiphFields(TagLib::Ogg::XiphComment& comment) : comment_(comment) {}

    std::vector<std::string> names(TagMeaning meaning) const override;
    std::optional<std::string> value(const std::string& field) const override;
    void set(const std::string& field, const std::string& value) override;
    void remove(const std::string& field) override;
    std::vector<std::string> listing() const override;

private:
    TagLib::Ogg::XiphComment& comment_;
};

}  // namespace media
