// SPDX-License-Identifier: MIT
#include "media/tags/TagRewrite.h"

#include <cctype>
#include <csignal>

#include <filesystem>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include "base/errors.h"
#include "media/ffmpeg.h"
#include "media/tags/TagFile.h"
#include "media/tags/planTags.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace media {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/** A file as FFmpeg alone sees it. */
struct Seen {
    /** Those of the file and of its streams. TagLib writes Vorbis' names in capitals, which do not
     *  count there. */
    std::map<std::string, std::string> tags;
    std::string packets;  ///< of the music, one behind the other
};

std::string capitals(std::string name) {
    for (char& letter : name)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    return name;
}

Seen see(const std::string& path) {
    Seen seen;
    AVFormatContext* context = nullptr;
    if (avformat_open_input(&context, ("file:" + path).c_str(), nullptr, nullptr) < 0) return seen;
    avformat_find_stream_info(context, nullptr);
    const auto take = [&](AVDictionary* dictionary) {
        const AVDictionaryEntry* entry = nullptr;
        while ((entry = av_dict_get(dictionary, "", entry, AV_DICT_IGNORE_SUFFIX)) != nullptr)
            seen.tags[capitals(entry->key)] = entry->value;
    };
    take(context->metadata);
    const int music = av_find_best_stream(context, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    take(context->streams[music]->metadata);
    const PacketPointer packet = makePacket();
    while (av_read_frame(context, packet.get()) >= 0) {
        if (packet->stream_index == music)
            seen.packets.append(reinterpret_cast<const char*>(packet->data),
                                static_cast<std::size_t>(packet->size));
        av_packet_unref(packet.get());
    }
    avformat_close_input(&context);
    return seen;
}

struct Kind {
    const char* name;
    test::FileKind file;
    std::vector<std::pair<std::string, std::string>> seen;  ///< by FFmpeg
};

using Pairs = std::vector<std::pair<std::string, std::string>>;

std::vector<Kind> kinds() {
    const Pairs id3 = {{"TBPM", "126"}, {"fBPM", "125.98"}, {"TKEY", "F#m"}};
    const Pairs xiph = {{"BPM", "125.98"}, {"INITIALKEY", "F#m"}};
    const Pairs mp4 = {{"BPM", "125.98"}, {"initialkey", "F#m"}};
    const char* tags = "title=T\xC3\xB6ne:artist=Somebody";
    return {
        {"mp3", {"mp3", "libmp3lame", "", true, tags}, id3},
        {"mp3 of version 3", {"mp3", "libmp3lame", "id3v2_version=3", true, tags}, id3},
        {"mp3 of version 1",
         {"mp3", "libmp3lame", "write_id3v1=1:id3v2_version=0", false,
          "title=Plain:artist=Somebody"},
         id3},
        {"flac", {"flac", "flac", "", true, tags}, xiph},
        {"vorbis", {"ogg", "libvorbis", "", false, tags}, xiph},
        {"opus", {"ogg", "libopus", "", false, tags}, xiph},
        {"m4a", {"ipod", "aac", "", true, tags}, mp4},
        {"m4a to be streamed", {"ipod", "aac", "movflags=faststart", false, tags}, mp4},
        {"m4a in fragments", {"mp4", "aac", "movflags=frag_keyframe+empty_moov", false, tags}, mp4},
        {"alac", {"ipod", "alac", "", false, tags}, mp4},
        {"aiff", {"aiff", "pcm_s16be", "write_id3v2=1", false, tags}, id3},
        // FFmpeg does not look into what stands behind the sound.
        {"wav", {"wav", "pcm_s16le", "", false, tags}, {}},
        {"aiff without tags", {"aiff", "pcm_s16be"}, id3},
        {"mp3 without tags", {"mp3", "libmp3lame", "id3v2_version=0"}, id3}};
}

const TagWish kWish = {125.98, "F#m"};

class TagRewrite : public testing::Test {
protected:
    std::string write(const test::FileKind& kind, double seconds = 3.0) {
        const std::string path = folder_.file("track");
        test::writeAudioFile(path, kind, test::tone(48000, 2, seconds, 440.0, 0.5));
        return path;
    }

    static std::vector<base::TagChange> plan(const std::string& path) {
        return planTags(TagFile(path, TagFile::Access::read).fields(), kWish, false);
    }

    static std::vector<std::string> rewrite(const std::string& path,
                                            media::TagRewrite::Options options = {}) {
        return media::TagRewrite(options).write(path, plan(path));
    }

    test::TemporaryFolder folder_;
};

TEST_F(TagRewrite, WritesEveryKindAndTouchesNothingElse) {
    for (const Kind& kind : kinds()) {
        const std::string path = write(kind.file);
        const Seen before = see(path);
        EXPECT_THAT(rewrite(path), IsEmpty()) << kind.name;
        const Seen after = see(path);
        EXPECT_FALSE(before.packets.empty()) << kind.name;
        EXPECT_EQ(after.packets, before.packets) << kind.name;
        std::map<std::string, std::string> expected = before.tags;
        for (const auto& [name, value] : kind.seen) expected[capitals(name)] = value;
        EXPECT_EQ(after.tags, expected) << kind.name;
        EXPECT_THAT(folder_.names(), ElementsAre("track")) << kind.name;
    }
}

TEST_F(TagRewrite, IsReadBackByTagLib) {
    for (const Kind& kind : kinds()) {
        const std::string path = write(kind.file);
        rewrite(path);
        const TagFile tags(path, TagFile::Access::read);
        for (const base::TagChange& change : planTags(tags.fields(), kWish, false))
            EXPECT_EQ(change.kind, base::TagChange::Kind::unchanged) << kind.name << change.field;
        const auto tempo = tags.fields().names(TagMeaning::tempo).front();
        EXPECT_EQ(tags.fields().value(tempo), tempo == "BPM" ? "125.98" : "126") << kind.name;
    }
}

TEST_F(TagRewrite, RemovesTheOtherNamesWhenItOverwrites) {
    const std::string path =
        write({"flac", "flac", "", false, "KEY=Gm:tempo=60:BPM=61:title=Song"});
    const auto changes = planTags(TagFile(path, TagFile::Access::read).fields(), kWish, true);
    media::TagRewrite({}).write(path, changes);
    const std::map<std::string, std::string> tags = see(path).tags;
    EXPECT_EQ(tags.count("KEY") + tags.count("TEMPO"), 0U);
    EXPECT_EQ(tags.at("BPM"), "125.98");
    EXPECT_EQ(tags.at("INITIALKEY"), "F#m");
    EXPECT_EQ(tags.at("TITLE"), "Song");
}

TEST_F(TagRewrite, ReadsTheNamesThatOthersUse) {
    const auto found = [&](const test::FileKind& kind) {
        std::vector<std::string> names;
        for (const base::TagChange& change : plan(write(kind))) {
            if (change.kind == base::TagChange::Kind::kept) names.push_back(change.field);
        }
        return names;
    };
    EXPECT_THAT(found({"flac", "flac", "", false, "fbpm=60:initial key=C"}),
                ElementsAre("FBPM", "INITIAL KEY"));
    EXPECT_THAT(found({"mp3", "libmp3lame", "", false, "bpm=60:Initialkey=C"}),
                ElementsAre("TXXX:BPM", "TXXX:INITIALKEY"));
    EXPECT_THAT(found({"mp3", "libmp3lame", "", false, "TBPM=60:TKEY=C"}),
                ElementsAre("TBPM", "TKEY"));
}

/** An ID3 tag of version 3 with one frame, before the music. */
std::string id3WithFrame(const std::string& id, const std::string& content) {
    const auto length = static_cast<char>(content.size());
    const auto all = static_cast<char>(content.size() + 10);
    return std::string("ID3\x03\0\0\0\0\0", 9) + all + id + std::string("\0\0\0", 3) + length +
           std::string("\0\0", 2) + content;
}

TEST_F(TagRewrite, KeepsFramesThatOneVersionOfId3HasAlone) {
    for (const char* id : {"RVAD", "EQUA", "TSIZ", "TSOP", "XYZW"}) {
        const std::string path = write({"mp3", "libmp3lame", "id3v2_version=0"});
        const std::string content = std::string("\0", 1) + "12345 something";
        test::writeFile(path, id3WithFrame(id, content) + test::readFile(path));
        rewrite(path);
        const std::string bytes = test::readFile(path);
        EXPECT_THAT(bytes.substr(0, 4000), HasSubstr(id));
        EXPECT_THAT(bytes.substr(0, 4000), HasSubstr("12345 something")) << id;
        EXPECT_EQ(bytes[3], std::string(id) == "TSOP" ? 4 : 3) << id;
    }
}

TEST_F(TagRewrite, KeepsPermissionsAndAttributes) {
    const std::string path = write({"flac", "flac"});
    chmod(path.c_str(), 0640);
    const bool hasAttributes = setxattr(path.c_str(), "user.mood", "calm", 4, 0) == 0;
    rewrite(path);
    struct stat status = {};
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    char value[4] = {};
    if (hasAttributes) {
        EXPECT_EQ(getxattr(path.c_str(), "user.mood", value, sizeof value), 4);
    }
}

TEST_F(TagRewrite, KeepsTheTimeWhenTold) {
    namespace fs = std::filesystem;
    const std::string path = write({"flac", "flac"});
    const auto old = fs::last_write_time(path) - std::chrono::hours(1000);
    fs::last_write_time(path, old);
    media::TagRewrite::Options options;
    options.keepsTime = true;
    rewrite(path, options);
    EXPECT_EQ(fs::last_write_time(path), old);
    EXPECT_EQ(see(path).tags.at("INITIALKEY"), "F#m");
    media::TagRewrite({}).write(
        path, planTags(TagFile(path, TagFile::Access::read).fields(), {100.0, {}}, true));
    EXPECT_GT(fs::last_write_time(path), old);
}

TEST_F(TagRewrite, KeepsTheOldFileWhenTold) {
    const std::string path = write({"flac", "flac"});
    const std::string before = test::readFile(path);
    media::TagRewrite::Options options;
    options.keepsBackup = true;
    rewrite(path, options);
    EXPECT_THAT(folder_.names(), ElementsAre("track", "track.bak"));
    EXPECT_EQ(test::readFile(folder_.file("track.bak")), before);
    EXPECT_THROW(media::TagRewrite(options).requirePossible(path), base::TrackError);
}

TEST_F(TagRewrite, FollowsLinksAndNamesOtherNames) {
    namespace fs = std::filesystem;
    const std::string path = write({"flac", "flac"});
    fs::create_symlink("track", folder_.file("link"));
    fs::create_hard_link(path, folder_.file("twin"));
    EXPECT_THAT(rewrite(folder_.file("link")), ElementsAre(HasSubstr("hard links")));
    EXPECT_TRUE(fs::is_symlink(folder_.file("link")));
    EXPECT_EQ(see(path).tags.at("INITIALKEY"), "F#m");
    EXPECT_EQ(see(folder_.file("twin")).tags.count("INITIALKEY"), 0U);
}

TEST_F(TagRewrite, LeavesTheFileAsItWasWhereThereIsNoRoom) {
    std::signal(SIGXFSZ, SIG_IGN);
    for (const Kind& kind : kinds()) {
        const std::string path = write(kind.file);
        const std::string before = test::readFile(path);
        const auto changes = plan(path);
        struct rlimit own = {};
        getrlimit(RLIMIT_FSIZE, &own);
        // The copy fits, or half of it.
        for (const std::size_t room : {before.size() + 10, before.size() / 2}) {
            const struct rlimit small = {room, own.rlim_max};
            setrlimit(RLIMIT_FSIZE, &small);
            EXPECT_ANY_THROW(media::TagRewrite({}).write(path, changes)) << kind.name;
            setrlimit(RLIMIT_FSIZE, &own);
            EXPECT_EQ(test::readFile(path), before) << kind.name;
            EXPECT_THAT(folder_.names(), ElementsAre("track"));
        }
    }
}

TEST_F(TagRewrite, RefusesKindsThatItCannotWrite) {
    for (const test::FileKind& kind : {test::FileKind{"adts", "aac"},
                                       {"asf", "wmav2"},
                                       {"matroska", "libopus"},
                                       {"w64", "pcm_s16le"},
                                       {"wav", "pcm_s16le", "rf64=always"},
                                       {"wv", "wavpack"}}) {
        try {
            TagFile(write(kind), TagFile::Access::read);
            ADD_FAILURE() << kind.muxer;
        } catch (const base::TrackError& error) {
            EXPECT_THAT(error.what(), HasSubstr("is of a kind whose tags are not written"));
        }
    }
}

}  // namespace
}  // namespace media
