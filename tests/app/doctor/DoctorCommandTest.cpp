// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace app {
namespace {

using test::runTool;
using test::TemporaryFolder;
using test::ToolRun;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/** The outcome of one check of a report in JSON. */
std::string outcomeOf(const ToolRun& run, const std::string& subject) {
    const auto document = nlohmann::json::parse(run.out);
    for (const auto& check : document.at("checks"))
        if (check.at("subject") == subject) return check.at("outcome");
    return "not checked";
}

ToolRun doctorWith(const std::map<std::string, std::string>& environment) {
    ToolRun run;
    run.arguments = {"doctor", "--json"};
    run.environment = environment;
    return run.run();
}

/** With no catalogue of the tester's. */
ToolRun doctorHere(const std::vector<std::string>& options = {}) {
    ToolRun run;
    run.arguments = {"doctor"};
    run.arguments.insert(run.arguments.end(), options.begin(), options.end());
    run.environment = {{"XDG_DATA_HOME", "/nonexistent"}};
    return run.run();
}

TEST(DoctorCommand, FindsNothingWrongHere) {
    const ToolRun run = doctorHere();
    EXPECT_EQ(run.exitStatus, 0) << run.out << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, StartsWith("program       beatatlas "));
    for (const char* part :
         {"compiler", "-ffp-contract=off", "libavcodec", "vector form", "processors", "memory",
          "locale", "120.00 BPM", "A minor", "as recorded", " 0 failed\n"})
        EXPECT_THAT(run.out, HasSubstr(part));
}

TEST(DoctorCommand, SaysTheSameInADocument) {
    const ToolRun run = doctorHere({"--json"});
    EXPECT_EQ(run.exitStatus, 0);
    const auto document = nlohmann::json::parse(run.out);
    EXPECT_EQ(document.at("format"), "beatatlas.doctor");
    EXPECT_EQ(document.at("well"), true);
    const ToolRun text = doctorHere();
    for (const auto& check : document.at("checks"))
        EXPECT_THAT(text.out, HasSubstr(check.at("text").get<std::string>()));
    for (const auto& fact : document.at("facts")) {
        // How much memory is free changes from run to run.
        if (fact.at("subject") == "memory") continue;
        EXPECT_THAT(text.out, HasSubstr(fact.at("text").get<std::string>()));
    }
}

TEST(DoctorCommand, FailsWhereNoTemporaryFileCanBeMade) {
    const ToolRun missing = doctorWith({{"TMPDIR", "/nonexistent"}});
    EXPECT_EQ(missing.exitStatus, 1);
    EXPECT_EQ(outcomeOf(missing, "temp folder"), "failed");
    EXPECT_EQ(outcomeOf(missing, "tempo"), "ok") << "the known track is in memory";

    const TemporaryFolder folder;
    ASSERT_EQ(chmod(folder.path().c_str(), 0555), 0);
    const ToolRun closed = doctorWith({{"TMPDIR", folder.path()}});
    EXPECT_EQ(closed.exitStatus, 1);
    EXPECT_EQ(outcomeOf(closed, "temp folder"), "failed");
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    EXPECT_EQ(outcomeOf(doctorWith({{"TMPDIR", folder.path()}}), "temp folder"), "ok");
    EXPECT_EQ(folder.names(), std::vector<std::string>{}) << "nothing is left there";
}

// A fault in the file stops every other command.
TEST(DoctorCommand, FindsAFaultInTheSettingsOfAnyCommand) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkdir(folder.file("beatatlas").c_str(), 0755), 0);
    const auto doctorWithSettings = [&](const std::string& text) {
        test::writeFile(folder.file("beatatlas/config.ini"), text);
        ToolRun run;
        run.arguments = {"doctor", "--json"};
        run.configFolder = folder.path();
        return run.run();
    };
    const ToolRun right = doctorWithSettings("memory = 1G\n[draw]\ntheme = light\n");
    EXPECT_EQ(outcomeOf(right, "settings"), "ok") << right.out;
    const ToolRun wrong = doctorWithSettings("memory = 1G\n[draw]\ntheme = blue\n");
    EXPECT_EQ(wrong.exitStatus, 1);
    EXPECT_EQ(outcomeOf(wrong, "settings"), "failed");
    EXPECT_THAT(wrong.out, HasSubstr("config.ini:3"));
}

/** What a report in JSON says of a subject. */
std::string factOf(const ToolRun& run, const std::string& subject) {
    const auto document = nlohmann::json::parse(run.out);
    for (const auto& fact : document.at("facts"))
        if (fact.at("subject") == subject) return fact.at("text");
    return "not told";
}

TEST(DoctorCommand, SaysOfALocaleThatIsSetWhetherItIsInstalled) {
    EXPECT_EQ(factOf(doctorWith({{"LC_ALL", "C.UTF-8"}}), "locale"), "C.UTF-8 (LC_ALL)");
    EXPECT_EQ(factOf(doctorWith({{"LC_ALL", ""}, {"LC_CTYPE", "xx_YY.UTF-8"}}), "locale"),
              "xx_YY.UTF-8 (LC_CTYPE); not installed");
}

TEST(DoctorCommand, MeasuresTheMachineInWhichItRuns) {
    const auto document = nlohmann::json::parse(runTool({"doctor", "--json"}).out);
    for (const auto& fact : document.at("facts")) {
        const std::string text = fact.at("text");
        if (fact.at("subject") == "processors") {
            EXPECT_THAT(text, MatchesRegex("[1-9][0-9]*"));
        } else if (fact.at("subject") == "memory") {
            EXPECT_THAT(text, Not(StartsWith("0.0")));
        }
    }
}

}  // namespace
}  // namespace app
