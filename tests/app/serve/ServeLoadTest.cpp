// SPDX-License-Identifier: MIT
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <thread>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "catalogue/TrackStore.h"
#include "serve/ServedCatalogue.h"

namespace app {
namespace {

using test::Answer;
using test::Client;

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMany = 1000;

class ServeLoad : public test::ServedCatalogue {
protected:
    ServeLoad() {
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }

    std::vector<std::unique_ptr<Client>> connect(std::size_t count,
                                                 const std::string& bytes) const {
        std::vector<std::unique_ptr<Client>> clients;
        for (std::size_t i = 0; i < count; ++i) {
            clients.push_back(std::make_unique<Client>(port_));
            EXPECT_TRUE(clients.back()->isConnected()) << i;
            clients.back()->send(bytes);
        }
        return clients;
    }

    /** A file of that many bytes in the catalogue. @return its number */
    std::string addFile(std::uintmax_t bytes) {
        const std::string path = folder_.file("long.wav");
        test::writeFile(path, "");
        std::filesystem::resize_file(path, bytes);
        catalogue::Catalogue catalogue(path_, catalogue::Catalogue::Access::write);
        catalogue::TrackStore tracks(catalogue);
        const auto track = tracks.find("/music/a.mp3").value();
        tracks.move(track, path, test::stateOf(path), tracks.read(track)->analysed.track.format);
        return std::to_string(track);
    }

    /** It answers within a second, which a server that waits for one client does not. */
    void expectAnAnswer() const {
        const auto start = Clock::now();
        EXPECT_EQ(get("/api/tracks").status, 200);
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
    }

    void expectAnEnd(int signal) {
        const auto start = Clock::now();
        tool_->signal(signal);
        EXPECT_EQ(tool_->wait(), 0);
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
        tool_.reset();
    }
};

TEST_F(ServeLoad, AnswersAThousandRequestsAtOnce) {
    const auto clients = connect(kMany, bytesOf("GET", "/api/tracks", "", {}));
    for (const auto& client : clients) ASSERT_EQ(client->receive().status, 200);
    expectAnEnd(SIGINT);
}

TEST_F(ServeLoad, AnswersWhileAThousandClientsDoNotSayWhatTheyWant) {
    const auto silent = connect(kMany / 2, "");
    const auto slow = connect(kMany / 2, "POST /api/tracks/1/undo HTTP/1.1\r\nContent-Le");
    expectAnAnswer();
    expectAnEnd(SIGTERM);
}

// Ten seconds is what a request may take.
TEST_F(ServeLoad, GivesUpWhoIsTooSlowToAsk) {
    const auto slow = connect(1, "GET /api/tracks HTTP/1.1\r\n");
    const auto start = Clock::now();
    std::this_thread::sleep_for(std::chrono::seconds(9));
    slow.front()->send("A: b\r\n");
    const Answer answer = slow.front()->receive();
    EXPECT_EQ(answer.status, 408);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(15));
}

TEST_F(ServeLoad, AnswersWhileClientsTakeAnAnswerSlowly) {
    const std::string target = "/api/tracks/" + addFile(std::uintmax_t{1} << 30) + "/audio";
    const auto slow = connect(100, bytesOf("GET", target, "", {}));
    expectAnAnswer();
    // More than a few at a time are told to come again.
    EXPECT_EQ(get(target).status, 503);
    expectAnEnd(SIGTERM);
}

TEST_F(ServeLoad, AnswersAgainOnceSlowClientsHaveGone) {
    const std::string target = "/api/tracks/" + addFile(1U << 20) + "/audio";
    for (int i = 0; i < 30; ++i) connect(1, bytesOf("GET", target, "", {}));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(get(target).body.size(), 1U << 20);
}

}  // namespace
}  // namespace app
