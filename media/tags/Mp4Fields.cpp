// SPDX-License-Identifier: MIT
#include "media/tags/Mp4Fields.h"

#include <algorithm>

#include <mp4coverart.h>
#include <mp4item.h>
#include <mp4tag.h>

#include "media/tags/tagText.h"

namespace media {

namespace {

constexpr const char* kTempo = "tmpo";

std::string freeform(const char* name) {
    return std::string("----:com.apple.iTunes:") + name;
}

/** Its texts, bytes and pictures. What kind of number it may be TagLib does not say. */
std::string textOf(const TagLib::MP4::Item& item) {
    std::string text = plainText(item.toStringList().toString("; "));
    for (const TagLib::ByteVector& bytes : item.toByteVectorList())
        text += '|' + std::string(bytes.data(), bytes.size());
    for (const TagLib::MP4::CoverArt& cover : item.toCoverArtList()) {
        const TagLib::ByteVector bytes = cover.data();
        text += '|' + std::string(bytes.data(), bytes.size());
    }
    return text;
}

}  // namespace

std::vector<std::string> Mp4Fields::names(TagMeaning meaning) const {
    switch (meaning) {
    case TagMeaning::tempo:
        return {kTempo};
    case TagMeaning::exactTempo:
        return {freeform("BPM"), freeform("fBPM"), freeform("TEMPO")};
    case TagMeaning::key:
        break;
    }
    return {freeform("initialkey"), freeform("INITIAL KEY"), freeform("KEY")};
}

/** Freeform names are written with capitals and without. */
std::vector<std::string> Mp4Fields::spellingsOf(const std::string& field) const {
    std::vector<std::string> spellings;
    for (const auto& [name, item] : tag_.itemMap()) {
        const std::string spelling = plainText(name);
        if (isSameWithoutCase(spelling, field)) spellings.push_back(spelling);
    }
    return spellings;
}

std::optional<std::string> Mp4Fields::value(const std::string& field) const {
    if (field == kTempo) {
        if (!tag_.contains(kTempo)) return std::nullopt;
        return std::to_string(tag_.item(kTempo).toInt());
    }
    TagLib::StringList texts;
    const auto spellings = spellingsOf(field);
    for (const std::string& name : spellings) texts.append(tag_.item(tagText(name)).toStringList());
    if (spellings.empty()) return std::nullopt;
    return plainText(texts.toString("; "));
}

void Mp4Fields::set(const std::string& field, const std::string& value) {
    remove(field);
    if (field == kTempo)
        tag_.setItem(kTempo, TagLib::MP4::Item(std::stoi(value)));
    else
        tag_.setItem(tagText(field), TagLib::MP4::Item(TagLib::StringList(tagText(value))));
}

void Mp4Fields::remove(const std::string& field) {
    for (const std::string& name : spellingsOf(field)) tag_.removeItem(tagText(name));
}

std::vector<std::string> Mp4Fields::listing() const {
    std::vector<std::string> list;
    for (const auto& [name, item] : tag_.itemMap())
        list.push_back(plainText(name) + "=" + textOf(item));
    std::sort(list.begin(), list.end());
    return list;
}

}  // namespace media
