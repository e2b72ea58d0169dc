// SPDX-License-Identifier: MIT
#include "media/OutputFile.h"

#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/errors.h"
#include "support/TemporaryFolder.h"

namespace {

bool refusesPermissions = false;

}  // namespace

// The linker leads calls of fchmod here: NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_fchmod(int descriptor, mode_t mode);
int __wrap_fchmod(int descriptor, mode_t mode) {
    if (!refusesPermissions) return __real_fchmod(descriptor, mode);
    errno = EPERM;
    return -1;
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace media {
namespace {

using test::readFile;
using test::writeFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class OutputFileTest : public testing::Test {
protected:
    std::string reasonOf(const std::string& path) const {
        try {
            OutputFile::requireWritable(path);
        } catch (const base::OutputError& error) {
            return error.what();
        }
        return "";
    }

    test::TemporaryFolder folder_;
    std::string path_ = folder_.file("out.png");
};

TEST_F(OutputFileTest, AppearsWithItsContentWhenCommitted) {
    OutputFile file(path_);
    file.write("abc", 3);
    EXPECT_FALSE(std::filesystem::exists(path_));
    file.commit();
    EXPECT_EQ(readFile(path_), "abc");
    EXPECT_THAT(folder_.names(), ElementsAre("out.png"));
}

TEST_F(OutputFileTest, LeavesNothingBehindWithoutCommit) {
    { OutputFile(path_).write("abc", 3); }
    EXPECT_THAT(folder_.names(), IsEmpty());
}

TEST_F(OutputFileTest, KeepsTheOlderFileUntilCommitted) {
    writeFile(path_, "old");
    { OutputFile(path_).write("new", 3); }
    EXPECT_EQ(readFile(path_), "old");
}

TEST_F(OutputFileTest, ReplacesTheTargetOfALinkAndKeepsTheLink) {
    writeFile(folder_.file("target"), "old");
    std::filesystem::create_symlink("target", path_);
    OutputFile file(path_);
    file.write("new", 3);
    file.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(path_));
    EXPECT_EQ(readFile(folder_.file("target")), "new");
}

TEST_F(OutputFileTest, WritesWhereALinkLeadsThatLedToNothing) {
    std::filesystem::create_directory(folder_.file("far"));
    std::filesystem::create_symlink("far/target", path_);
    OutputFile file(path_);
    file.write("new", 3);
    file.commit();
    EXPECT_TRUE(std::filesystem::is_symlink(path_));
    EXPECT_EQ(readFile(folder_.file("far/target")), "new");
}

TEST_F(OutputFileTest, RefusesLinksThatLeadNowhere) {
    std::filesystem::create_symlink("missing/target", path_);
    EXPECT_THAT(reasonOf(path_), HasSubstr("No such file or directory"));
    std::filesystem::create_symlink("circle", folder_.file("circle"));
    EXPECT_THAT(reasonOf(folder_.file("circle")), HasSubstr("Too many levels of symbolic links"));
}

// The longest name that Linux lets a file have is one of 255 bytes.
TEST_F(OutputFileTest, TakesNamesAsLongAsAFileMayHave) {
    for (const std::size_t length : {240, 249, 255}) {
        const std::string name(length, 'n');
        EXPECT_EQ(reasonOf(folder_.file(name)), "");
        OutputFile file(folder_.file(name));
        file.write("abc", 3);
        file.commit();
        EXPECT_EQ(readFile(folder_.file(name)), "abc");
    }
    EXPECT_THAT(reasonOf(folder_.file(std::string(256, 'n'))), HasSubstr("File name too long"));
}

TEST_F(OutputFileTest, KeepsTheResultWherePermissionsCannotBeSet) {
    OutputFile file(path_);
    file.write("abc", 3);
    refusesPermissions = true;
    const std::string warning = file.commit();
    refusesPermissions = false;
    EXPECT_EQ(warning, "its permissions could not be set: Operation not permitted");
    EXPECT_EQ(readFile(path_), "abc");
    EXPECT_EQ(OutputFile(path_).commit(), "");
}

TEST_F(OutputFileTest, KeepsThePermissionsOfTheReplacedFile) {
    writeFile(path_, "old");
    chmod(path_.c_str(), 0640);
    OutputFile(path_).commit();
    struct stat status = {};
    stat(path_.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(OutputFileTest, GivesANewFileTheUsualPermissions) {
    const mode_t before = umask(022);
    OutputFile(path_).commit();
    umask(before);
    struct stat status = {};
    stat(path_.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0644U);
}

TEST_F(OutputFileTest, RefusesAFolderADeviceAndAMissingFolderWithTheReason) {
    EXPECT_THAT(reasonOf(folder_.path()), HasSubstr("is a folder"));
    EXPECT_THAT(reasonOf("/dev/null"), HasSubstr("not a regular file"));
    EXPECT_THAT(reasonOf(folder_.file("missing/out.png")), HasSubstr("No such file or directory"));
    EXPECT_EQ(reasonOf(path_), "");
}

TEST_F(OutputFileTest, KnowsOneFileByTwoNames) {
    writeFile(path_, "x");
    std::filesystem::create_symlink("out.png", folder_.file("link"));
    writeFile(folder_.file("other"), "x");
    EXPECT_TRUE(OutputFile::isSameFile(path_, folder_.file("link")));
    EXPECT_FALSE(OutputFile::isSameFile(path_, folder_.file("other")));
    EXPECT_FALSE(OutputFile::isSameFile(path_, folder_.file("missing")));
}

}  // namespace
}  // namespace media
