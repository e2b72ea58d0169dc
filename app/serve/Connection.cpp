// SPDX-License-Identifier: MIT
#include "serve/Connection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace app {

namespace {

constexpr std::size_t kBlockBytes = 16384;
constexpr int kMostRestBlocks = 64;

// A pause in an audio element stops its reading: the browser asks again for what is missing.
constexpr std::chrono::seconds kPatience(20);
constexpr std::size_t kLeastBytesPerSecond = 32768;
constexpr std::chrono::seconds kLongestSilence(60);

}  // namespace

Connection::Connection(int socket, std::shared_ptr<ConnectionLoad> load)
    : socket_(socket), load_(std::move(load)) {
    ++load_->connections;
}

Connection::~Connection() {
    // Bytes that nobody read would make the system tear the connection down with the answer.
    shutdown(socket_, SHUT_WR);
    std::array<char, kBlockBytes> rest{};
    for (int i = 0; i < kMostRestBlocks; ++i) {
        if (recv(socket_, rest.data(), rest.size(), MSG_DONTWAIT) <= 0) break;
    }
    close(socket_);
    load_->receivedBytes -= received_.size();
    --load_->connections;
}

Connection::Reading Connection::read(std::size_t mostBytes) {
    std::array<char, kBlockBytes> block{};
    while (received_.size() < mostBytes) {
        const std::size_t wanted = std::min(block.size(), mostBytes - received_.size());
        const ssize_t count = recv(socket_, block.data(), wanted, MSG_DONTWAIT);
        if (count > 0) {
            received_.append(block.data(), static_cast<std::size_t>(count));
            load_->receivedBytes += static_cast<std::size_t>(count);
            continue;
        }
        if (count < 0 && errno == EINTR) continue;
        const bool isLater = count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
        return isLater ? Reading::waiting : Reading::ended;
    }
    return Reading::full;
}

/** Whoever took much at first does not earn a long silence by it: what is at hand is bounded. */
Connection::Clock::time_point Connection::deadline() const {
    const auto earned = std::chrono::seconds(sent_ / kLeastBytesPerSecond);
    return std::min(answeredSince_ + kPatience + earned, takenAt_ + kLongestSilence);
}

bool Connection::awaitRoom(const std::atomic<bool>& isStopped) const {
    while (!isStopped) {
        if (Clock::now() > deadline()) return false;
        pollfd room{socket_, POLLOUT, 0};
        const int ready = poll(&room, 1, kPollMilliseconds);
        if (ready > 0) return (room.revents & (POLLERR | POLLHUP | POLLNVAL)) == 0;
        if (ready < 0 && errno != EINTR) return false;
    }
    return false;
}

bool Connection::send(std::string_view bytes, const std::atomic<bool>& isStopped) {
    if (answeredSince_ == Clock::time_point()) answeredSince_ = takenAt_ = Clock::now();
    while (!isBroken_ && !bytes.empty()) {
        // A client that takes everything at once never makes it wait for room.
        if (isStopped) isBroken_ = true;
        if (isBroken_) break;
        const ssize_t count =
            ::send(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            sent_ += static_cast<std::size_t>(count);
            takenAt_ = Clock::now();
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            isBroken_ = !awaitRoom(isStopped);
        } else {
            isBroken_ = errno != EINTR;
        }
    }
    return !isBroken_;
}

void Connection::dismiss(const Refusal& refusal) {
    const std::string answer =
        fmt::format("HTTP/1.1 {}\r\nContent-Type: text/plain\r\nContent-Length: {}\r\n"
                    "Connection: close\r\n\r\n{}",
                    refusal.status, refusal.sentence.size(), refusal.sentence);
    // A few bytes that nothing came before always have room.
    const ssize_t ignored =
        ::send(socket_, answer.data(), answer.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    static_cast<void>(ignored);
}

}  // namespace app
