// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/TagChange.h"
#include "media/tags/TagFields.h"

namespace media {

class OpenTags;

/** The tags of an audio file, by way of TagLib: MP3, FLAC, Ogg Vorbis, Opus, MP4, AIFF and WAV, as
 *  their content tells. */
class TagFile {
public:
    enum class Access { read, write };

    /** Opens the file and reads its tags.
     *  @throws TrackError when the file cannot be read, or its tags cannot be written */
    TagFile(const std::string& path, Access access);
    ~TagFile();
    TagFile(const TagFile&) = delete;
    TagFile& operator=(const TagFile&) = delete;

    const TagFields& fields() const;

    /** Changes the fields, and writes the tags into the file as it stands. TagLib notices few of a
     *  disk's failures: read the file again.
     *  @throws TrackError when TagLib says that it failed */
    void write(const std::vector<base::TagChange>& changes);

private:
    std::unique_ptr<OpenTags> open_;
};

}  // namespace media
