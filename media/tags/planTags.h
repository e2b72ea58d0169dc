// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/TagChange.h"
#include "media/tags/TagFields.h"

namespace media {

/** What tags are to say; nothing: it is left as it is. */
struct TagWish {
    std::optional<double> bpm;
    std::optional<std::string> key;
};

/** What has to be done so that tags say what they are to say.
 *
 *  Tempo and key are settled each for itself. Where a field says something else already, none of
 *  that group is touched: a tempo beside another one would not help anybody. What is missing beside
 *  fields that agree is added.
 *  @param overwrites  replaces what says something else, and removes the other names of the same */
std::vector<base::TagChange> planTags(const TagFields& fields, const TagWish& wish,
                                      bool overwrites);

}  // namespace media
