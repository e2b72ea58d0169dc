// SPDX-License-Identifier: MIT
// Which files a scan takes: folders, playlists, names on standard input, shares.
#include <algorithm>
#include <filesystem>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/errors.h"
#include "io/absolutePath.h"
#include "scan/FileGathering.h"
#include "scan/FolderWalk.h"
#include "scan/NameList.h"
#include "scan/Shard.h"
#include "scan/fileState.h"
#include "scan/playlist.h"
#include "scan/usualLength.h"
#include "support/TemporaryFolder.h"

namespace app {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Gathering : public testing::Test {
protected:
    std::string make(const std::string& name, const std::string& bytes = "x") {
        const std::string path = folder_.file(name);
        fs::create_directories(fs::path(path).parent_path());
        test::writeFile(path, bytes);
        return path;
    }

    std::vector<std::string> walked(FolderWalk::Options options = {}) {
        std::vector<std::string> files;
        const std::string root = folder_.path();
        FolderWalk walk(
            options,
            [&](const std::string& path, const struct stat&) {
                files.push_back(path.substr(root.size() + 1));
            },
            [&](const std::string& folder, const std::string& reason) {
                refused_.push_back(folder + ": " + reason);
            },
            [&](const std::string& path) { passedOver_.push_back(path.substr(root.size() + 1)); });
        walk.walk(root);
        return files;
    }

    std::vector<std::string> listed(const std::string& name, const std::string& bytes) {
        return readPlaylist(make(name, bytes)).files;
    }

    test::TemporaryFolder folder_;
    std::vector<std::string> refused_;
    std::vector<std::string> passedOver_;
};

using FolderWalkTest = Gathering;
using PlaylistTest = Gathering;

TEST_F(FolderWalkTest, FindsFilesAtAnyDepthAndOfAnyName) {
    make("a.mp3");
    make("b/c/d.flac");
    make("b/\xFF\xFE\n.wav");
    EXPECT_THAT(walked(), UnorderedElementsAre("a.mp3", "b/c/d.flac", "b/\xFF\xFE\n.wav"));
    EXPECT_THAT(refused_, IsEmpty());
}

TEST_F(FolderWalkTest, LeavesHiddenFilesAndFoldersOutUnlessTold) {
    make(".hidden.mp3");
    make(".trash/a.mp3");
    make("b.mp3");
    EXPECT_THAT(walked(), ElementsAre("b.mp3"));
    EXPECT_THAT(walked({true, false}),
                UnorderedElementsAre(".hidden.mp3", ".trash/a.mp3", "b.mp3"));
}

TEST_F(FolderWalkTest, EntersLinksToFoldersOnlyWhenTold) {
    const test::TemporaryFolder other;
    test::writeFile(other.file("far.mp3"), "x");
    make("near.mp3");
    fs::create_directory_symlink(other.path(), folder_.file("link"));
    EXPECT_THAT(walked(), ElementsAre("near.mp3"));
    EXPECT_THAT(walked({false, true}), UnorderedElementsAre("near.mp3", "link/far.mp3"));
}

TEST_F(FolderWalkTest, TakesLinksToFilesAndLeavesLinksToNothing) {
    make("a.mp3");
    fs::create_symlink(folder_.file("a.mp3"), folder_.file("b.mp3"));
    fs::create_symlink(folder_.file("nowhere"), folder_.file("c.mp3"));
    fs::create_symlink(folder_.file("d.mp3"), folder_.file("d.mp3"));
    EXPECT_THAT(walked(), UnorderedElementsAre("a.mp3", "b.mp3"));
    EXPECT_THAT(refused_, IsEmpty());
}

TEST_F(FolderWalkTest, EntersEachFolderOfACircleOnce) {
    make("a/b/c.mp3");
    fs::create_directory_symlink(folder_.path(), folder_.file("a/b/up"));
    fs::create_directory_symlink("..", folder_.file("a/back"));
    fs::create_directory_symlink("self", folder_.file("self"));
    EXPECT_THAT(walked({false, true}), testing::SizeIs(1));
}

TEST_F(FolderWalkTest, PassesOverWhatIsNeitherFileNorFolder) {
    make("a.mp3");
    ASSERT_EQ(mkfifo(folder_.file("pipe").c_str(), 0600), 0);
    EXPECT_THAT(walked(), ElementsAre("a.mp3"));
    EXPECT_THAT(passedOver_, ElementsAre("pipe"));
}

TEST_F(FolderWalkTest, SaysWhyAFolderCannotBeRead) {
    FolderWalk walk(
        {}, [](const std::string&, const struct stat&) {},
        [&](const std::string& folder, const std::string& reason) {
            refused_.push_back(folder + ": " + reason);
        },
        [](const std::string&) {});
    walk.walk(folder_.file("none"));
    EXPECT_THAT(refused_, ElementsAre(folder_.file("none") +
                                      ": cannot be opened: No such file or directory"));
}

TEST_F(PlaylistTest, NamesFilesBesideTheListAndElsewhere) {
    EXPECT_THAT(listed("l.m3u8", "#EXTM3U\n#EXTINF:12,Someone\na.mp3\n\nsub/b.mp3\n/far/c.mp3"),
                ElementsAre(folder_.file("a.mp3"), folder_.file("sub/b.mp3"), "/far/c.mp3"));
}

TEST_F(PlaylistTest, ReadsBothKindsOfLineEndsAndTheMarkOfUtf8) {
    EXPECT_THAT(listed("l.m3u", "\xEF\xBB\xBF"
                                "\xC3\xA9.mp3\r\nb.mp3\r\n"),
                ElementsAre(folder_.file("\xC3\xA9.mp3"), folder_.file("b.mp3")));
}

TEST_F(PlaylistTest, ReadsLinesThatEndInCarriageReturns) {
    EXPECT_THAT(listed("l.m3u", "#EXTM3U\ra.mp3\r\rb.mp3\r"),
                ElementsAre(folder_.file("a.mp3"), folder_.file("b.mp3")));
}

TEST_F(PlaylistTest, ReadsUtf16ByItsMark) {
    const std::string little("\xFF\xFE\xE9\0.\0m\0p\0003\0\r\0\n\0", 16);
    EXPECT_THAT(listed("l.m3u", little), ElementsAre(folder_.file("\xC3\xA9.mp3")));
}

TEST_F(PlaylistTest, ReadsUtf16BehindHalfACharacter) {
    // Half of a pair, D800, then "a": one question mark, and the next character is whole again.
    const std::string little("\xFF\xFE\0\xD8"
                             "a\0\n\0b\0",
                             10);
    EXPECT_THAT(listed("l.m3u", little), ElementsAre(folder_.file("?a"), folder_.file("b")));
}

TEST_F(PlaylistTest, FindsFilesNamedInTheWesternCodePage) {
    make("caf\xC3\xA9.mp3");
    EXPECT_THAT(listed("l.m3u", "caf\xE9.mp3\n"), ElementsAre(folder_.file("caf\xC3\xA9.mp3")));
    // The bytes as they stand come first.
    make("caf\xE9.mp3");
    EXPECT_THAT(listed("l.m3u", "caf\xE9.mp3\n"), ElementsAre(folder_.file("caf\xE9.mp3")));
}

TEST_F(PlaylistTest, FindsFilesNamedWithBackslashesOrEscapes) {
    make("sub/two words.mp3");
    const auto there = ElementsAre(folder_.file("sub/two words.mp3"));
    EXPECT_THAT(listed("l.m3u", "sub\\two words.mp3\n"), there);
    EXPECT_THAT(listed("l.m3u", "sub/two%20words.mp3\n"), there);
    make("100%25.mp3");
    EXPECT_THAT(listed("l.m3u", "100%25.mp3\n"), ElementsAre(folder_.file("100%25.mp3")));
}

TEST_F(PlaylistTest, ReadsFileAddresses) {
    EXPECT_THAT(listed("l.m3u", "file:///a%20b/c.mp3\nFILE://localhost/d.mp3\nfile:/e%2.mp3\n"),
                ElementsAre("/a b/c.mp3", "/d.mp3", "/e%2.mp3"));
}

TEST_F(PlaylistTest, SetsOtherAddressesApart) {
    const Playlist list =
        readPlaylist(make("l.m3u", "http://radio.example/a.mp3\nfile://host/b.mp3\nc: d.mp3\n"));
    EXPECT_THAT(list.addresses, ElementsAre("http://radio.example/a.mp3", "file://host/b.mp3"));
    EXPECT_THAT(list.files, ElementsAre(folder_.file("c: d.mp3")));
}

TEST_F(PlaylistTest, ReadsPls) {
    EXPECT_THAT(listed("l.PLS", "[playlist]\r\nNumberOfEntries=2\r\nFile1=a.mp3\r\nTitle1=A=B\r\n"
                                "file2=/b=c.mp3\r\nFilex=no.mp3\r\n"),
                ElementsAre(folder_.file("a.mp3"), "/b=c.mp3"));
}

TEST_F(PlaylistTest, IsRecognisedByItsEnding) {
    for (const char* name : {"a.m3u", "a.M3U8", "/b/c.pls"}) EXPECT_TRUE(isPlaylist(name));
    for (const char* name : {"a.m3", "m3u", "a.pls.mp3"}) EXPECT_FALSE(isPlaylist(name));
    EXPECT_THROW(readPlaylist(folder_.file("none.m3u")), base::TrackError);
}

TEST_F(Gathering, RefusesANameWithANulInIt) {
    make("a.mp3");
    const std::string list = make("l.m3u", "a.mp3%00b.mp3\na.mp3\n");
    std::vector<std::string> found;
    FileGathering files(
        {{}, {}, folder_.file("c.sqlite")},
        [&](const std::string& path, const catalogue::FileState&, double) {
            found.push_back(path);
        },
        [&](const std::string&, const std::string& reason) { refused_.push_back(reason); },
        [](const std::string&, const std::string&) {});
    files.add(list);
    EXPECT_THAT(found, ElementsAre(folder_.file("a.mp3")));
    EXPECT_THAT(refused_, ElementsAre("cannot be opened: no file has a NUL in its name"));
}

TEST(FileStateTest, TakesTimesBeyondWhatNanosecondsCanCount) {
    struct stat status = {};
    status.st_size = 7;
    status.st_mtim = {1700000000, 5};
    EXPECT_EQ(fileStateOf(status), (catalogue::FileState{7, 1700000000000000005}));
    status.st_mtim = {-1, 5};
    EXPECT_EQ(fileStateOf(status), (catalogue::FileState{7, -999999995}));
    // 2^34 s in nanoseconds, less 2^64.
    status.st_mtim = {std::int64_t{1} << 34, 0};
    EXPECT_EQ(fileStateOf(status), (catalogue::FileState{7, -1266874889709551616}));
}

TEST(NameListTest, TakesLinesUnlessThereIsANul) {
    NameList lines(false);
    EXPECT_THAT(lines.put("a\nb"), IsEmpty());
    EXPECT_THAT(lines.finish(), ElementsAre("a", "b"));
    NameList nuls(false);
    EXPECT_THAT(nuls.put(std::string("a\nb\0c", 5)), ElementsAre("a\nb"));
    EXPECT_THAT(nuls.finish(), ElementsAre("c"));
}

TEST(NameListTest, TakesNulWhereItWasTold) {
    NameList names(true);
    EXPECT_THAT(names.put("one\nname"), IsEmpty());
    EXPECT_THAT(names.finish(), ElementsAre("one\nname"));
}

TEST(NameListTest, DoesNotKeepALongStreamOfLines) {
    NameList names(false);
    std::size_t count = 0;
    const std::string line = std::string(99, 'a') + "\n";
    for (int i = 0; i < 10000; ++i) count += names.put(line).size();
    // 64 KiB of lines are waited for; then each comes out as it goes in.
    EXPECT_EQ(count, 10000U);
    EXPECT_THAT(names.finish(), IsEmpty());
}

TEST(NameListTest, KeepsNoMoreOfAnEndlessNameThanAnyNameHas) {
    NameList names(true);
    for (int i = 0; i < 1000; ++i) EXPECT_THAT(names.put(std::string(65536, 'x')), IsEmpty());
    const auto complete = names.put(std::string("x\0a.mp3\0", 8));
    ASSERT_EQ(complete.size(), 2U);
    EXPECT_LE(complete[0].size(), 65537U);
    EXPECT_EQ(complete[1], "a.mp3");
}

TEST(ShardTest, GivesEachFileToExactlyOneShare) {
    std::map<std::uint64_t, int> sizes;
    for (int i = 0; i < 3000; ++i) {
        const std::string path = "/music/" + std::to_string(i) + ".mp3";
        int owners = 0;
        for (std::uint64_t number = 1; number <= 3; ++number) {
            if (!Shard{number, 3}.has(path)) continue;
            ++owners;
            ++sizes[number];
        }
        ASSERT_EQ(owners, 1) << path;
    }
    // 1,000 each, with a standard deviation of sqrt(3000 * 1/3 * 2/3) = 26.
    for (const auto& [number, size] : sizes) EXPECT_NEAR(size, 1000, 130) << number;
}

TEST(ShardTest, IsTheSameOnEveryMachine) {
    // By the program xxhsum, 0x43f35143b2c045a0 and 0x2856767c565b20f0: 2 and 2 modulo 10.
    EXPECT_TRUE((Shard{3, 10}.has("/music/a.mp3")));
    EXPECT_TRUE((Shard{3, 10}.has("/music/b.mp3")));
}

TEST(UsualLengthTest, SetsLongFilesBeforeShortOnesAndUnknownOnesLast) {
    // A CD's minute is 10.6 MB plain; a tenth of that is lossy.
    EXPECT_NEAR(usualSeconds("a.WAV", 10584000), 60.0, 0.001);
    EXPECT_GT(usualSeconds("a.mp3", 10584000), 300.0);
    EXPECT_EQ(usualSeconds("cover.jpg", 10584000), 0.0);
    EXPECT_TRUE(hasMusicEnding("/x/a.Flac"));
    EXPECT_FALSE(hasMusicEnding("/x/flac"));
}

TEST(AbsolutePathTest, NamesAFileInOneWay) {
    EXPECT_EQ(absolutePath("/a//b/./c.mp3"), "/a/b/c.mp3");
    EXPECT_EQ(absolutePath("/"), "/");
    EXPECT_EQ(absolutePath("x/./y"), fs::current_path().string() + "/x/y");
    EXPECT_EQ(absolutePath("/nowhere/at/../all"), "/nowhere/all");
}

TEST_F(Gathering, FollowsDotsAsTheSystemDoes) {
    const test::TemporaryFolder other;
    fs::create_directory(other.file("deep"));
    fs::create_directory_symlink(other.file("deep"), folder_.file("link"));
    EXPECT_EQ(absolutePath(folder_.file("link/../a")), fs::canonical(other.path()).string() + "/a");
    EXPECT_EQ(absolutePath(folder_.file("link/a")), folder_.file("link/a"));
}

}  // namespace
}  // namespace app
