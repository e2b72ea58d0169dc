// SPDX-License-Identifier: MIT
#include "media/tags/Id3Fields.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <attachedpictureframe.h>
#include <id3v2framefactory.h>
#include <id3v2header.h>
#include <id3v2tag.h>
#include <textidentificationframe.h>
#include <unknownframe.h>

#include "media/tags/tagText.h"

namespace media {

namespace {

constexpr std::string_view kUserText = "TXXX:";
constexpr std::size_t kFrameIdLength = 4;

// TagLib leaves these out when it writes version 3.
constexpr std::array kOnlyInVersion4 = {"ASPI", "EQU2", "RVA2", "SEEK", "SIGN", "TDRL", "TDTG",
                                        "TMOO", "TPRO", "TSOA", "TSOP", "TSOT", "TSST"};

// And these when it reads version 3.
constexpr std::array kOnlyInVersion3 = {"EQUA", "RVAD", "TRDA", "TSIZ"};

template <class List>
bool contains(const List& list, const TagLib::ByteVector& frame) {
    return std::any_of(list.begin(), list.end(), [&](const char* id) { return frame == id; });
}

/** Makes a name of TagLib's reachable that is protected. */
class FrameNames : public TagLib::ID3v2::Frame {
public:
    using Header = TagLib::ID3v2::Frame::Header;
};

class CarefulFrames : public TagLib::ID3v2::FrameFactory {
public:
    // That of the base class is protected.
    CarefulFrames() = default;

protected:
    bool updateFrame(FrameNames::Header* header) const override {
        if (header->version() == 3 && contains(kOnlyInVersion3, header->frameID())) return true;
        return FrameFactory::updateFrame(header);
    }
};

bool isUserText(const TagLib::ID3v2::Frame& frame, const std::string& description) {
    const auto* text = dynamic_cast<const TagLib::ID3v2::UserTextIdentificationFrame*>(&frame);
    return text != nullptr && isSameWithoutCase(plainText(text->description()), description);
}

/** What a user's own text says behind its description. */
TagLib::StringList textsOf(const TagLib::ID3v2::Frame& frame) {
    const auto* text = dynamic_cast<const TagLib::ID3v2::TextIdentificationFrame*>(&frame);
    if (text == nullptr) return TagLib::StringList(frame.toString());
    TagLib::StringList texts = text->fieldList();
    const bool isOwn = dynamic_cast<const TagLib::ID3v2::UserTextIdentificationFrame*>(&frame);
    if (isOwn && !texts.isEmpty()) texts.erase(texts.begin());
    return texts;
}

/** The bytes of a frame that has no text. */
TagLib::ByteVector bytesOf(const TagLib::ID3v2::Frame& frame) {
    if (const auto* picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame*>(&frame))
        return picture->picture();
    if (const auto* unknown = dynamic_cast<const TagLib::ID3v2::UnknownFrame*>(&frame))
        return unknown->data();
    return {};
}

}  // namespace

TagLib::ID3v2::FrameFactory& carefulFrames() {
    static CarefulFrames factory;
    return factory;
}

std::vector<std::string> Id3Fields::names(TagMeaning meaning) const {
    switch (meaning) {
    case TagMeaning::tempo:
        return {"TBPM", "TXXX:BPM", "TXXX:TEMPO"};
    case TagMeaning::exactTempo:
        return {"TXXX:fBPM"};
    case TagMeaning::key:
        break;
    }
    return {"TKEY", "TXXX:INITIALKEY", "TXXX:INITIAL KEY", "TXXX:KEY"};
}

std::vector<TagLib::ID3v2::Frame*> Id3Fields::framesOf(const std::string& field) const {
    const auto& frames = tag_.frameList(field.substr(0, kFrameIdLength).c_str());
    std::vector<TagLib::ID3v2::Frame*> found;
    std::copy_if(frames.begin(), frames.end(), std::back_inserter(found),
                 [&](const TagLib::ID3v2::Frame* frame) {
                     return !field.starts_with(kUserText) ||
                            isUserText(*frame, field.substr(kUserText.size()));
                 });
    return found;
}

std::optional<std::string> Id3Fields::value(const std::string& field) const {
    TagLib::StringList texts;
    const auto frames = framesOf(field);
    for (const TagLib::ID3v2::Frame* frame : frames) texts.append(textsOf(*frame));
    if (frames.empty()) return std::nullopt;
    return plainText(texts.toString("; "));
}

void Id3Fields::set(const std::string& field, const std::string& value) {
    remove(field);
    TagLib::ID3v2::TextIdentificationFrame* frame = nullptr;
    if (field.starts_with(kUserText)) {
        auto* own = new TagLib::ID3v2::UserTextIdentificationFrame;
        own->setDescription(field.substr(kUserText.size()));
        frame = own;
    } else {
        frame = new TagLib::ID3v2::TextIdentificationFrame(field.c_str());
    }
    frame->setText(value);
    tag_.addFrame(frame);  // which owns it from here on
}

void Id3Fields::remove(const std::string& field) {
    for (TagLib::ID3v2::Frame* frame : framesOf(field)) tag_.removeFrame(frame);
}

std::vector<std::string> Id3Fields::listing() const {
    std::vector<std::string> list;
    for (const TagLib::ID3v2::Frame* frame : tag_.frameList()) {
        const TagLib::ByteVector id = frame->frameID();
        const TagLib::ByteVector bytes = bytesOf(*frame);
        list.push_back(std::string(id.data(), id.size()) + "=" + plainText(frame->toString()) +
                       std::string(bytes.data(), bytes.size()));
    }
    std::sort(list.begin(), list.end());
    return list;
}

int Id3Fields::version() const {
    const auto& frames = tag_.frameList();
    const bool needs4 =
        std::any_of(frames.begin(), frames.end(), [](const TagLib::ID3v2::Frame* frame) {
            return contains(kOnlyInVersion4, frame->frameID());
        });
    const bool isNew = tag_.header()->tagSize() == 0;
    return needs4 || (!isNew && tag_.header()->majorVersion() >= 4) ? 4 : 3;
}

}  // namespace media
