// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace media {

/** What a field of a file's tags can tell of tempo and key. */
enum class TagMeaning {
    tempo,       ///< in BPM; a whole number where the container has room for nothing else
    exactTempo,  ///< in BPM, two places behind the point, where `tempo` is a whole number
    key,
};

/** The tags of one kind of container. Fields go by the container's own names, those that have a
 *  description by both: "TXXX:fBPM". */
class TagFields {
public:
    virtual ~TagFields() = default;

    /** The fields that tell something, the one to write first, then those in which others have put
     *  it. None: the container has no field of its own for that. */
    virtual std::vector<std::string> names(TagMeaning meaning) const = 0;

    /** The field's text, several joined by "; "; nothing when there is no such field. */
    virtual std::optional<std::string> value(const std::string& field) const = 0;

    virtual void set(const std::string& field, const std::string& value) = 0;
    virtual void remove(const std::string& field) = 0;

    /** Everything that the tags hold, in an order of its own: what set() and remove() do not touch
     *  is the same before and after. */
    virtual std::vector<std::string> listing() const = 0;
};

}  // namespace media
