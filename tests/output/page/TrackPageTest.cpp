// SPDX-License-Identifier: MIT
#include "output/page/TrackPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "output/page/packed.h"
#include "support/Reports.h"

namespace output {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string pageOf(const TrackReport& report, const PageSound& sound = {}) {
    std::string page;
    writeTrackPage(report, sound, [&](std::string_view text) { page += text; });
    return page;
}

/** What stands between two texts, the first time. */
std::string between(const std::string& page, const std::string& begin, const std::string& end) {
    const std::size_t from = page.find(begin);
    if (from == std::string::npos) return {};
    return page.substr(from + begin.size(),
                       page.find(end, from + begin.size()) - from - begin.size());
}

std::size_t countOf(const std::string& page, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = page.find(text); at != std::string::npos; at = page.find(text, at + 1))
        ++count;
    return count;
}

nlohmann::json dataOf(const std::string& page) {
    return nlohmann::json::parse(between(page, "id=\"data\">", "</script>"));
}

TEST(TrackPage, AllowsItsOwnScriptAndStyleAlone) {
    const std::string page = pageOf(test::exampleReport());
    const std::string policy = between(page, "Content-Security-Policy\" content=\"", "\">");
    EXPECT_THAT(policy, HasSubstr("default-src 'none'"));
    EXPECT_THAT(policy, HasSubstr("script-src " +
                                  policyHash(between(page, "type=\"module\">", "</script>"))));
    EXPECT_THAT(policy, HasSubstr("style-src " + policyHash(between(page, "<style>", "</style>"))));
    EXPECT_THAT(policy, Not(HasSubstr("unsafe")));
    EXPECT_THAT(policy, Not(HasSubstr("connect-src")));
}

TEST(TrackPage, AsksForNoOtherFile) {
    const std::string page = pageOf(test::exampleReport());
    EXPECT_THAT(page, Not(HasSubstr("src=\"")));
    EXPECT_EQ(countOf(page, "href="), countOf(page, "href=\"data:"));
    for (const char* filling : {"title", "policy", "style", "data", "sound", "script"})
        EXPECT_THAT(page, Not(HasSubstr(std::string("{{") + filling)));
    EXPECT_THAT(page, Not(HasSubstr("\nimport ")));
}

TEST(TrackPage, HoldsNoTagOfANameOrATitle) {
    TrackReport report = test::exampleReport();
    const std::size_t usual = countOf(pageOf(report), "</script");
    report.path = "<img src=x onerror=alert(1)>.flac";
    report.format.tags = {"A & B", "</script><script>alert(1)</script><!--"};
    const std::string page = pageOf(report);
    EXPECT_EQ(countOf(page, "</script"), usual);
    EXPECT_THAT(page, Not(HasSubstr("<img")));
    EXPECT_THAT(page, Not(HasSubstr("<!--")));
    EXPECT_THAT(page, HasSubstr("<title>A &amp; B - &lt;/script&gt;"));
    const auto track = dataOf(page)["track"];
    EXPECT_EQ(track["title"], "</script><script>alert(1)</script><!--");
    EXPECT_EQ(track["file"], "<img src=x onerror=alert(1)>.flac");
}

// Longer than a piece of three times 65,536 bytes, and no multiple of three.
TEST(TrackPage, HoldsTheSoundWhole) {
    std::string bytes;
    for (int i = 0; i < 200000; ++i) bytes += static_cast<char>(i * 7);
    const std::string page = pageOf(test::exampleReport(), {bytes, std::nullopt});
    EXPECT_EQ(between(page, "id=\"sound\">", "</script>"), base64(bytes));
    EXPECT_EQ(dataOf(page)["audio"], nullptr);
}

TEST(TrackPage, RefersToAFile) {
    const std::string page = pageOf(test::exampleReport(), {std::nullopt, "../a%20b.flac"});
    EXPECT_EQ(dataOf(page)["audio"], "../a%20b.flac");
    EXPECT_EQ(between(page, "id=\"sound\">", "</script>"), "");
}

TEST(TrackPage, IsMadeOfATrackWithoutAnything) {
    EXPECT_EQ(dataOf(pageOf(test::emptyReport()))["track"]["key"], nullptr);
}

}  // namespace
}  // namespace output
