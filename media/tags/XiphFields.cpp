// SPDX-License-Identifier: MIT
#include "media/tags/XiphFields.h"

#include <algorithm>

#include <xiphcomment.h>

#include "media/tags/tagText.h"

namespace media {

std::vector<std::string> XiphFields::names(TagMeaning meaning) const {
    switch (meaning) {
    case TagMeaning::tempo:
        return {"BPM", "FBPM", "TEMPO"};
    case TagMeaning::exactTempo:
        return {};
    case TagMeaning::key:
        break;
    }
    return {"INITIALKEY", "INITIAL KEY", "INITIAL_KEY", "KEY"};
}

std::optional<std::string> XiphFields::value(const std::string& field) const {
    const auto& fields = comment_.fieldListMap();
    const auto found = fields.find(tagText(field));
    if (found == fields.end()) return std::nullopt;
    return plainText(found->second.toString("; "));
}

void XiphFields::set(const std::string& field, const std::string& value) {
    comment_.addField(tagText(field), tagText(value));
}

void XiphFields::remove(const std::string& field) {
    comment_.removeFields(tagText(field));
}

std::vector<std::string> XiphFields::listing() const {
    std::vector<std::string> list;
    for (const auto& [name, values] : comment_.fieldListMap()) {
        for (const TagLib::String& value : values)
            list.push_back(plainText(name) + "=" + plainText(value));
    }
    std::sort(list.begin(), list.end());
    return list;
}

}  // namespace media
