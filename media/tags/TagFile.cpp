// SPDX-License-Identifier: MIT
#include "media/tags/TagFile.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

#include <aifffile.h>
#include <fcntl.h>
#include <flacfile.h>
#include <mp4file.h>
#include <mpegfile.h>
#include <opusfile.h>
#include <tfilestream.h>
#include <vorbisfile.h>
#include <wavfile.h>

#include "base/errors.h"
#include "media/Container.h"
#include "media/FileInput.h"
#include "media/tags/Id3Fields.h"
#include "media/tags/Mp4Fields.h"
#include "media/tags/XiphFields.h"

namespace media {

/** A file of some container, open. */
class OpenTags {
public:
    virtual ~OpenTags() = default;
    virtual TagFields& fields() = 0;
    virtual bool save() = 0;
};

namespace {

using Stream = std::unique_ptr<TagLib::FileStream>;

constexpr bool kWithoutProperties = false;

TagLib::ID3v2::Version id3Version(const Id3Fields& fields) {
    return fields.version() == 3 ? TagLib::ID3v2::v3 : TagLib::ID3v2::v4;
}

/** New ID3v2 tags hide the older ones of the same file: these are copied into them. */
bool save(TagLib::MPEG::File& file, const Id3Fields& fields) {
    const bool isFirst = !file.hasID3v2Tag() && file.hasID3v1Tag();
    return file.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripNone, id3Version(fields),
                     isFirst ? TagLib::File::Duplicate : TagLib::File::DoNotDuplicate);
}

bool save(TagLib::RIFF::WAV::File& file, const Id3Fields& fields) {
    return file.save(TagLib::RIFF::WAV::File::ID3v2, TagLib::File::StripNone, id3Version(fields));
}

bool save(TagLib::RIFF::AIFF::File& file, const Id3Fields& fields) {
    return file.save(id3Version(fields));
}

template <class File>
bool save(File& file, const TagFields& /*fields*/) {
    return file.save();
}

template <class File, class Fields>
class OpenKind : public OpenTags {
public:
    template <class Tag>
    OpenKind(Stream stream, std::unique_ptr<File> file, Tag& tag)
        : stream_(std::move(stream)), file_(std::move(file)), fields_(tag) {}

    TagFields& fields() override { return fields_; }
    bool save() override { return media::save(*file_, fields_); }

private:
    Stream stream_;
    std::unique_ptr<File> file_;
    Fields fields_;
};

/** @param tag  of the file; null when TagLib could not read it */
template <class Fields, class File, class Tag>
std::unique_ptr<OpenTags> opened(Stream stream, std::unique_ptr<File> file, Tag* tag) {
    if (tag == nullptr || !file->isValid())
        throw base::TrackError("has tags that cannot be read, so none are written");
    return std::make_unique<OpenKind<File, Fields>>(std::move(stream), std::move(file), *tag);
}

std::unique_ptr<OpenTags> openMp3(Stream stream) {
    auto file =
        std::make_unique<TagLib::MPEG::File>(stream.get(), &carefulFrames(), kWithoutProperties);
    auto* tag = file->ID3v2Tag(true);
    return opened<Id3Fields>(std::move(stream), std::move(file), tag);
}

std::unique_ptr<OpenTags> openFlac(Stream stream) {
    auto file =
        std::make_unique<TagLib::FLAC::File>(stream.get(), &carefulFrames(), kWithoutProperties);
    auto* tag = file->xiphComment(true);
    return opened<XiphFields>(std::move(stream), std::move(file), tag);
}

template <class File, class Fields>
std::unique_ptr<OpenTags> openPlainly(Stream stream) {
    auto file = std::make_unique<File>(stream.get(), kWithoutProperties);
    auto* tag = file->tag();
    return opened<Fields>(std::move(stream), std::move(file), tag);
}

std::unique_ptr<OpenTags> openWave(Stream stream) {
    auto file = std::make_unique<TagLib::RIFF::WAV::File>(stream.get(), kWithoutProperties);
    auto* tag = file->ID3v2Tag();
    return opened<Id3Fields>(std::move(stream), std::move(file), tag);
}

using Opener = std::unique_ptr<OpenTags> (*)(Stream);

Opener oggOpener(AVCodecID codec) {
    if (codec == AV_CODEC_ID_VORBIS) return openPlainly<TagLib::Ogg::Vorbis::File, XiphFields>;
    if (codec == AV_CODEC_ID_OPUS) return openPlainly<TagLib::Ogg::Opus::File, XiphFields>;
    return nullptr;
}

/** WAV files above 4 GB begin with other letters, and TagLib would take them for short ones. */
bool isPlainWave(const FileInput& input) {
    std::array<char, 4> letters{};
    return input.readAt(0, letters.data(), letters.size()) == letters.size() &&
           std::string_view(letters.data(), letters.size()) == "RIFF";
}

Opener openerFor(const std::string& path) {
    FileInput input(path);
    const Container container(input);
    if (container.isFormat("mp3")) return openMp3;
    if (container.isFormat("flac")) return openFlac;
    if (container.isFormat("mp4")) return openPlainly<TagLib::MP4::File, Mp4Fields>;
    if (container.isFormat("ogg")) return oggOpener(container.stream().codecpar->codec_id);
    if (container.isFormat("aiff")) return openPlainly<TagLib::RIFF::AIFF::File, Id3Fields>;
    if (container.isFormat("wav") && isPlainWave(input)) return openWave;
    return nullptr;
}

/** @return a descriptor for a stream to take over */
int openFile(const std::string& path, TagFile::Access access) {
    const int mode = access == TagFile::Access::read ? O_RDONLY : O_RDWR;
    const int descriptor = open(path.c_str(), mode | O_CLOEXEC | O_NONBLOCK);
    if (descriptor == -1) throw base::TrackError("cannot be opened: " + base::systemReason(errno));
    return descriptor;
}

}  // namespace

TagFile::TagFile(const std::string& path, Access access) {
    const Opener opener = openerFor(path);
    if (opener == nullptr)
        throw base::TrackError(
            "is of a kind whose tags are not written: MP3, FLAC, Ogg Vorbis, Opus, MP4, AIFF and "
            "WAV up to 4 GB can be");
    open_ = opener(
        std::make_unique<TagLib::FileStream>(openFile(path, access), access == Access::read));
}

TagFile::~TagFile() = default;

const TagFields& TagFile::fields() const {
    return open_->fields();
}

void TagFile::write(const std::vector<base::TagChange>& changes) {
    using Kind = base::TagChange::Kind;
    for (const base::TagChange& change : changes) {
        if (change.kind == Kind::removed) open_->fields().remove(change.field);
        if (change.kind == Kind::added || change.kind == Kind::replaced)
            open_->fields().set(change.field, change.after);
    }
    if (!open_->save()) throw base::TrackError("has tags that cannot be written");
}

}  // namespace media
