// SPDX-License-Identifier: MIT
#pragma once

#include "media/tags/TagFields.h"

namespace TagLib::ID3v2 {
class Frame;
class FrameFactory;
class Tag;
}  // namespace TagLib::ID3v2

namespace media {

/** ID3v2, as in MP3, AIFF and WAV: TBPM is a whole number, TXXX:fBPM the exact tempo, TKEY a key of
 *  at most three letters: "Am", "F#m", "Bb". */
class Id3Fields : public TagFields {
public:
    /** @param tag  outlives this */
    explicit Id3Fields(TagLib::ID3v2::Tag& tag) : tag_(tag) {}

    std::vector<std::string> names(TagMeaning meaning) const override;
    std::optional<std::string> value(const std::string& field) const override;
    void set(const std::string& field, const std::string& value) override;
    void remove(const std::string& field) override;
    std::vector<std::string> listing() const override;

    /** The version in which the tags are to be written, 3 or 4: that of the file, 3 for new ones;
     *  4 where there are fields that version 3 does not have. */
    int version() const;

private:
    std::vector<TagLib::ID3v2::Frame*> framesOf(const std::string& field) const;

    TagLib::ID3v2::Tag& tag_;
};

/** Makes frames as TagLib does by itself, but keeps those of version 3 that it would leave out. */
TagLib::ID3v2::FrameFactory& carefulFrames();

}  // namespace media
