// SPDX-License-Identifier: MIT
#pragma once

#include "media/tags/TagFields.h"

namespace TagLib::MP4 {
class Tag;
}

namespace media {

/** The tags of MP4: tmpo is a whole number, the freeform field BPM the exact tempo, the freeform
 *  field initialkey the key. */
class Mp4Fields : public TagFields {
public:
    /** @param tag  outlives this */
    explicit Mp4Fields(TagLib::MP4::Tag& tag) : tag_(tag) {}

    std::vector<std::string> names(TagMeaning meaning) const override;
    std::optional<std::string> value(const std::string& field) const override;
    void set(const std::string& field, const std::string& value) override;
    void remove(const std::string& field) override;
    std::vector<std::string> listing() const override;

private:
    std::vector<std::string> spellingsOf(const std::string& field) const;

    TagLib::MP4::Tag& tag_;
};

}  // namespace media
