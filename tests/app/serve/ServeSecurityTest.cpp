// SPDX-License-Identifier: MIT
#include <chrono>
#include <cstdlib>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "serve/ServedCatalogue.h"

namespace app {
namespace {

using test::Answer;
using test::Client;
using test::sendAndReceive;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ServeSecurity = test::ServedCatalogue;

TEST_F(ServeSecurity, SendsWhoKnowsTheAddressOnWithACookieAndWithoutTheSecret) {
    const std::string target = address_.substr(address_.find("/?"));
    const Answer answer = get(target, {{"Cookie", ""}});
    EXPECT_EQ(answer.status, 303);
    EXPECT_EQ(answer.header("Location"), "/");
    const std::string cookie = answer.header("Set-Cookie");
    EXPECT_THAT(cookie, HasSubstr("; HttpOnly"));
    EXPECT_THAT(cookie, HasSubstr("; SameSite=Strict"));
    // Those of programs that have ended do not pile up: browsers send them to all ports.
    EXPECT_THAT(cookie, HasSubstr("; Max-Age=86400"));
    // What was printed opens nothing once it is seen in a cookie, and the other way round.
    const std::string token = target.substr(target.find('=') + 1);
    EXPECT_EQ(token.size(), 64U);
    EXPECT_THAT(cookie, Not(HasSubstr(token)));
    EXPECT_EQ(get("/", {{"Cookie", "beatatlas-" + std::to_string(port_) + "=" + token}}).status,
              403);
}

TEST_F(ServeSecurity, PrintsAnotherSecretAtEachStart) {
    const std::string before = address_;
    const std::string oldCookie = cookie_;
    start({"--port", std::to_string(port_)});
    EXPECT_NE(address_, before);
    EXPECT_EQ(get("/api/tracks", {{"Cookie", oldCookie}}).status, 403);
}

TEST_F(ServeSecurity, TellsNothingToWhoWasNotLetIn) {
    for (const char* target : {"/", "/api/tracks", "/api/tracks/1", "/api/tracks/1/audio",
                               "/api/scan", "/api/export?format=csv", "/web/library/library.js",
                               "/?token=0", "/?token=", "/api/tracks?token=0"}) {
        for (const std::string& cookie : {std::string(), std::string("beatatlas=1"),
                                          cookie_.substr(0, cookie_.size() - 1), cookie_ + "0"}) {
            const Answer answer = get(target, {{"Cookie", cookie}});
            EXPECT_EQ(answer.status, 403) << target;
            EXPECT_THAT(answer.body, Not(HasSubstr("music"))) << target;
        }
    }
    EXPECT_EQ(post("/api/tracks/1/undo", "", {{"Cookie", ""}}).status, 403);
}

// A page of another site can make a name of its own lead to this computer.
TEST_F(ServeSecurity, AnswersUnderItsOwnNamesAlone) {
    for (const std::string& name :
         {std::string("evil.example"), "evil.example:" + std::to_string(port_),
          std::string("127.0.0.1"), std::string("127.0.0.1:1"),
          "127.0.0.2:" + std::to_string(port_), "127.0.0.1.evil.example:" + std::to_string(port_),
          "10.0.0.1:" + std::to_string(port_), std::string()})
        EXPECT_EQ(get("/api/tracks", {{"Host", name}}).status, 421) << name;
    EXPECT_EQ(get("/api/tracks", {{"Host", "localhost:" + std::to_string(port_)}}).status, 200);
}

TEST_F(ServeSecurity, RefusesPagesOfOtherSitesAndOtherPrograms) {
    for (const char* origin : {"http://evil.example", "http://127.0.0.1:1", "http://localhost",
                               "https://127.0.0.1", "null"}) {
        EXPECT_EQ(get("/api/tracks", {{"Origin", origin}}).status, 403) << origin;
        EXPECT_EQ(post("/api/tracks/1/undo", "", {{"Origin", origin}}).status, 403) << origin;
    }
    for (const char* site : {"cross-site", "same-site"}) {
        EXPECT_EQ(get("/api/tracks", {{"Sec-Fetch-Site", site}}).status, 403) << site;
        EXPECT_EQ(get("/web/library/library.js", {{"Sec-Fetch-Site", site}}).status, 403) << site;
    }
    for (const char* site : {"same-origin", "none"})
        EXPECT_EQ(get("/api/tracks", {{"Sec-Fetch-Site", site}}).status, 200) << site;
}

TEST_F(ServeSecurity, ChangesNothingUnlessItsOwnPageAsksForIt) {
    const std::string track = "/api/tracks/" + numberOf("/a.mp3");
    const std::string edit = R"({"kind":"double"})";
    EXPECT_EQ(post(track + "/corrections", edit, {{"Origin", ""}}).status, 403);
    for (const char* type : {"text/plain", "application/x-www-form-urlencoded", ""})
        EXPECT_EQ(post(track + "/corrections", edit, {{"Content-Type", type}}).status, 415) << type;
    EXPECT_EQ(get(track + "/corrections?kind=double").status, 405);
    EXPECT_EQ(get(track + "/undo").status, 405);
    for (const char* method : {"PUT", "DELETE", "OPTIONS", "PATCH", "TRACE"})
        EXPECT_EQ(request(method, track + "/corrections", edit).status, 405) << method;
    EXPECT_EQ(get(track).json()["corrections"].size(), 0U);
    EXPECT_EQ(post(track + "/corrections", edit).status, 200);
}

TEST_F(ServeSecurity, SaysWithEachAnswerWhatBrowsersMayDoWithIt) {
    const std::string invitation = address_.substr(address_.find("/?"));
    const Answer answers[] = {get("/"),
                              get(invitation),
                              get("/", {{"Cookie", ""}}),
                              get("/none"),
                              get("/api/tracks"),
                              get("/api/tracks?limit=x"),
                              get("/api/tracks/1/audio"),
                              get("/api/export?format=csv"),
                              get("/api/scan", {{"Host", "evil.example"}}),
                              sendAndReceive(port_, "GET /\r\n\r\n")};
    for (const Answer& answer : answers) {
        EXPECT_THAT(answer.header("Content-Security-Policy"),
                    testing::AllOf(StartsWith("default-src 'none'; script-src 'self';"),
                                   HasSubstr("frame-ancestors 'none'"), Not(HasSubstr("unsafe"))))
            << answer.head;
        EXPECT_EQ(answer.header("X-Content-Type-Options"), "nosniff");
        EXPECT_EQ(answer.header("Referrer-Policy"), "no-referrer");
        EXPECT_EQ(answer.header("Cross-Origin-Opener-Policy"), "same-origin");
        EXPECT_EQ(answer.header("Cross-Origin-Resource-Policy"), "same-origin");
        EXPECT_EQ(answer.header("Access-Control-Allow-Origin"), "");
    }
}

TEST_F(ServeSecurity, RefusesRequestsWithoutMeasure) {
    const auto with = [&](const std::string& header) {
        return bytesOf("GET", "/api/tracks", "", {})
            .insert(sizeof "GET /api/tracks HTTP/1.1\r", header);
    };
    // Each refusal says why.
    const auto statusOf = [&](const std::string& request) {
        const Answer answer = sendAndReceive(port_, request);
        EXPECT_NE(answer.body, "") << answer.status;
        return answer.status;
    };
    EXPECT_EQ(statusOf(with("")), 200);
    EXPECT_EQ(statusOf(std::string(20000, 'x')), 431);
    EXPECT_EQ(statusOf(with("A: " + std::string(9000, 'x') + "\r\n")), 431);
    EXPECT_EQ(get("/" + std::string(9000, 'x')).status, 431);
    const Answer full = get("/", {{"Cookie", std::string(9000, 'x')}});
    EXPECT_EQ(full.status, 431);
    EXPECT_THAT(full.body, HasSubstr("Delete the cookies"));
    EXPECT_EQ(statusOf(with("Content-Length: 1048577\r\n")), 413);
    EXPECT_EQ(statusOf(with("Content-Length: 0\r\ncontent-length: 5\r\n")), 400);
    EXPECT_EQ(statusOf(with("Content-Length: -1\r\n")), 400);
    EXPECT_EQ(statusOf(with("Transfer-Encoding: chunked\r\n")), 411);
    EXPECT_EQ(statusOf(with("A: b\nHost: evil.example\r\n")), 400);
    EXPECT_EQ(statusOf(with(std::string("A: \0\r\n", 6))), 400);
    EXPECT_EQ(
        get("/api/tracks/1/audio", {{"Range", "bytes=" + std::string(90, '0') + "-1"}}).status,
        416);
    EXPECT_EQ(get("/api/tracks").status, 200);
}

TEST_F(ServeSecurity, ListensForProgramsOnThisComputerAloneUnlessItIsAsked) {
    EXPECT_FALSE(Client(port_, "127.0.0.2").isConnected());
    EXPECT_THAT(tool_->err(), Not(HasSubstr("other computers")));
    start({"--listen", "0.0.0.0"});
    EXPECT_TRUE(Client(port_, "127.0.0.2").isConnected());
    EXPECT_THAT(tool_->err(),
                HasSubstr("other computers can reach this, and nothing is encrypted"));
    EXPECT_EQ(get("/api/tracks", {{"Host", "10.0.0.1:" + std::to_string(port_)}}).status, 200);
    EXPECT_EQ(get("/api/tracks", {{"Host", "evil.example:" + std::to_string(port_)}}).status, 421);
}

// An address has many spellings; browsers ask for the usual one, whichever was printed.
TEST_F(ServeSecurity, KnowsItsAddressHoweverItWasSpelled) {
    start({"--listen", "127.1"});
    EXPECT_THAT(address_, StartsWith("http://127.0.0.1:"));
    EXPECT_EQ(get("/api/tracks").status, 200);
    for (const char* all : {"0", "::0", "::"}) {
        start({"--listen", all});
        EXPECT_THAT(address_, StartsWith("http://127.0.0.1:")) << all;
        EXPECT_EQ(get("/api/tracks").status, 200) << all;
        EXPECT_EQ(get("/api/tracks", {{"Host", "10.0.0.1:" + std::to_string(port_)}}).status, 200);
    }
    start({"--listen", "0:0:0:0:0:0:0:1"});
    EXPECT_THAT(address_, StartsWith("http://[::1]:"));
}

TEST_F(ServeSecurity, TakesNoNameForAnAddressAndNoPortThatIsTaken) {
    EXPECT_EQ(catalogued("serve", {"--listen", "localhost"}).exitStatus, 2);
    const test::ToolRun second = catalogued("serve", {"--port", std::to_string(port_)});
    EXPECT_EQ(second.exitStatus, 1);
    EXPECT_THAT(second.err, HasSubstr("cannot listen at 127.0.0.1:"));
}

/** Paths that lead out of a folder, in all the ways in which dots and slashes can be written. */
class OddTargets {
public:
    std::string next() {
        static const std::vector<std::string> parts = {"..",
                                                       ".",
                                                       "/",
                                                       "//",
                                                       "\\",
                                                       "%2e%2e",
                                                       "%2E%2e/",
                                                       "%2f",
                                                       "%5c",
                                                       "%252e%252e%252f",
                                                       "%00",
                                                       "%c0%ae%c0%ae",
                                                       "%c0%af",
                                                       "%u002e%u002e",
                                                       "%u2215",
                                                       "..;/",
                                                       "web",
                                                       "api",
                                                       "tracks",
                                                       "1",
                                                       "audio",
                                                       "sound",
                                                       "etc/passwd",
                                                       "secret.txt",
                                                       "c.sqlite",
                                                       "?",
                                                       "#",
                                                       "%",
                                                       "%2",
                                                       "&ids=",
                                                       "text=",
                                                       "%ff",
                                                       "\xC3\xA9",
                                                       "+",
                                                       "-1",
                                                       "99999999999999999999",
                                                       "library.html",
                                                       "file:",
                                                       "http://evil.example/",
                                                       "track",
                                                       "~",
                                                       "%0d%0aX-Odd:1"};
        std::string target = random_() % 2 == 0 ? "/web/" : "/api/tracks/";
        if (random_() % 4 == 0) target = "/";
        const auto count = random_() % 12;
        for (unsigned i = 0; i < count; ++i) target += parts[random_() % parts.size()];
        if (random_() % 8 == 0) target += static_cast<char>(random_() % 256);
        return target;
    }

private:
    std::mt19937 random_{20};
};

// Two seconds of it; BEATATLAS_SERVE_FUZZ_SECONDS in the environment asks for more.
TEST_F(ServeSecurity, OpensNoFileForAnyAddress) {
    test::writeFile(folder_.file("secret.txt"), "the secret of the folder");
    const char* wanted = std::getenv("BEATATLAS_SERVE_FUZZ_SECONDS");
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::seconds(wanted == nullptr ? 2 : std::atoi(wanted));
    OddTargets targets;
    int answered = 0;
    while (std::chrono::steady_clock::now() < end) {
        const std::string target = targets.next();
        const Answer answer = get(target);
        answered += answer.status != 0 ? 1 : 0;
        EXPECT_THAT(answer.body, Not(HasSubstr("the secret of"))) << target;
        EXPECT_THAT(answer.body, Not(HasSubstr("root:"))) << target;
        EXPECT_THAT(answer.body, Not(StartsWith("SQLite format"))) << target;
        EXPECT_EQ(answer.header("X-Odd"), "") << target;
        EXPECT_LT(answer.status, 500) << target << ": " << answer.body;
    }
    EXPECT_GT(answered, 100);
    EXPECT_EQ(get("/api/tracks").status, 200);
    RecordProperty("answered", answered);
}

}  // namespace
}  // namespace app
