// SPDX-License-Identifier: MIT
#include <filesystem>
#include <fstream>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/CataloguedTracks.h"
#include "doctor/catalogueCheck.h"
#include "support/AudioFileWriter.h"

namespace app {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DoctorCatalogue : public test::CataloguedTracks {
protected:
    /** Gives other bytes to the last page of the file, a part of what is kept of a track. */
    void damageLastPage() const {
        constexpr std::streamoff kPageBytes = 4096;
        std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(-kPageBytes, std::ios::end);
        file << std::string(kPageBytes, '\xFF');
    }
};

TEST_F(DoctorCatalogue, IsWellWhereItIsSoundOrNotThereYet) {
    const Check sound = checkCatalogue(path_);
    EXPECT_EQ(sound.outcome, Outcome::ok) << sound.text;
    EXPECT_THAT(sound.text, HasSubstr(path_ + ": version 4, 4 tracks"));
    const Check none = checkCatalogue(folder_.file("none.sqlite"));
    EXPECT_EQ(none.outcome, Outcome::ok);
    EXPECT_THAT(none.text, HasSubstr("none.sqlite: none yet"));
    EXPECT_FALSE(std::filesystem::exists(folder_.file("none.sqlite")));
}

TEST_F(DoctorCatalogue, FailsWhereItIsDamaged) {
    damageLastPage();
    const Check damaged = checkCatalogue(path_);
    EXPECT_EQ(damaged.outcome, Outcome::failed);
    EXPECT_THAT(damaged.text, HasSubstr(path_ + ": is damaged"));
    test::writeFile(path_, "no database at all");
    EXPECT_EQ(checkCatalogue(path_).outcome, Outcome::failed);
    EXPECT_EQ(checkCatalogue(folder_.path()).outcome, Outcome::failed) << "a folder";
}

TEST_F(DoctorCatalogue, FailsWhereItIsOfAVersionThatIsNotKnown) {
    SQLite::Database(path_, SQLite::OPEN_READWRITE).exec("PRAGMA user_version = 99");
    const Check newer = checkCatalogue(path_);
    EXPECT_EQ(newer.outcome, Outcome::failed);
    EXPECT_THAT(newer.text, HasSubstr("is a catalogue of version 99"));
}

TEST_F(DoctorCatalogue, IsLookedForWhereCommandsTakeIt) {
    const std::string settings = folder_.file("config.ini");
    test::writeFile(settings, "catalogue = /a.sqlite\n[list]\ncatalogue = \"/b c.sqlite\"\n"
                              "[show]\ncatalogue = /a.sqlite\n");
    EXPECT_THAT(cataloguesInUse(settings), ElementsAre("/a.sqlite", "/b c.sqlite"));
    ASSERT_EQ(setenv("XDG_DATA_HOME", "/data", 1), 0);
    test::writeFile(settings, "[list]\ncatalogue = /a.sqlite\n");
    EXPECT_THAT(cataloguesInUse(settings),
                ElementsAre("/a.sqlite", "/data/beatatlas/catalogue.sqlite"));
    test::writeFile(settings, "what is this\n");
    EXPECT_THAT(cataloguesInUse(settings), ElementsAre("/data/beatatlas/catalogue.sqlite"));
    EXPECT_THAT(cataloguesInUse(""), ElementsAre("/data/beatatlas/catalogue.sqlite"));
    unsetenv("XDG_DATA_HOME");
}

TEST_F(DoctorCatalogue, IsNotedWhereItMayNotBeWritten) {
    std::filesystem::create_directory(folder_.file("beatatlas"));
    std::filesystem::copy(path_, folder_.file("beatatlas/catalogue.sqlite"));
    test::ToolRun run;
    run.arguments = {"doctor"};
    run.environment = {{"XDG_DATA_HOME", folder_.path()}};
    EXPECT_THAT(run.run().out, HasSubstr("ok      catalogue     " + folder_.path()));
    ASSERT_EQ(chmod(folder_.file("beatatlas").c_str(), 0555), 0);
    run.out.clear();
    EXPECT_THAT(run.run().out, HasSubstr("; it may be read but not written to\n"));
    EXPECT_EQ(run.exitStatus, 0) << "lists and pages are there all the same";
    ASSERT_EQ(chmod(folder_.file("beatatlas").c_str(), 0755), 0);
}

}  // namespace
}  // namespace app
