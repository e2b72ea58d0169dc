// SPDX-License-Identifier: MIT
#include "serve/ConnectionGate.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>

namespace app {

namespace {

constexpr int kMostConnections = 2048;
// For the catalogue, files and the standard streams.
constexpr rlim_t kOtherDescriptors = 128;

// Bytes of requests, all together.
constexpr std::size_t kMostReceived = std::size_t{64} * 1048576;

constexpr std::chrono::seconds kMostSeconds(10);
constexpr Refusal kLate = {"408 Request Timeout",
                           "The request took longer than ten seconds to arrive.\n"};

// Those that have come are looked at before they might have to make room for more.
constexpr int kMostAtOnce = 256;

/** As many as the system grants, up to a number that still is quick to look through. */
int connectionLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
    const rlim_t wanted = kMostConnections + kOtherDescriptors;
    if (limit.rlim_cur < wanted) {
        limit.rlim_cur = std::min(limit.rlim_max, wanted);
        setrlimit(RLIMIT_NOFILE, &limit);
        getrlimit(RLIMIT_NOFILE, &limit);
    }
    const rlim_t granted = std::min(limit.rlim_cur, wanted);
    return std::max(static_cast<int>(granted) - static_cast<int>(kOtherDescriptors), 1);
}

}  // namespace

ConnectionGate::ConnectionGate(int listening, Take take)
    : listening_(listening), take_(std::move(take)), mostOpen_(connectionLimit()) {}

void ConnectionGate::step() {
    // Nothing more is taken while every place is held by a request that is being answered.
    const bool hasRoom = load_->connections < mostOpen_ || !waiting_.empty();
    std::vector<pollfd> watched;
    watched.reserve(waiting_.size() + 1);
    watched.push_back({listening_, static_cast<short>(hasRoom ? POLLIN : 0), 0});
    for (const auto& connection : waiting_) watched.push_back({connection->socket(), POLLIN, 0});
    if (poll(watched.data(), watched.size(), Connection::kPollMilliseconds) > 0) {
        for (std::size_t i = 0; i < waiting_.size(); ++i) {
            if (watched[i + 1].revents != 0 && waiting_[i] != nullptr) receive(waiting_[i]);
            dropOverload();
        }
        std::erase(waiting_, nullptr);
        if (watched.front().revents != 0) acceptSome();
    }
    dismissLate();
}

/** The connection goes from the list when it is handed on or closed. */
void ConnectionGate::receive(std::unique_ptr<Connection>& connection) {
    const Connection::Reading reading = connection->read(kMostHeadBytes + kMostBodyBytes);
    const RequestFrame frame = frameOf(connection->received());
    if (frame.refusal != nullptr) {
        connection->dismiss(*frame.refusal);
        connection.reset();
    } else if (frame.isWhole(connection->received().size())) {
        take_(std::move(connection), frame);
    } else if (reading != Connection::Reading::waiting) {
        connection.reset();
    }
}

void ConnectionGate::dismissLate() {
    const auto isLate = [](const auto& connection) {
        return Connection::Clock::now() - connection->since() > kMostSeconds;
    };
    while (!waiting_.empty() && isLate(waiting_.front())) {
        waiting_.front()->dismiss(kLate);
        waiting_.erase(waiting_.begin());
    }
}

/** Those that wait longest go first. Where all that is left is being answered, whoever sends more
 *  goes. */
void ConnectionGate::dropOverload() {
    for (auto& connection : waiting_) {
        if (load_->receivedBytes <= kMostReceived) return;
        connection.reset();
    }
}

void ConnectionGate::makeRoom() {
    if (load_->connections >= mostOpen_ && !waiting_.empty()) waiting_.erase(waiting_.begin());
}

/** Without descriptors or memory the connection stays in line, and would be offered again and
 *  again: another one makes room, or a moment passes. */
void ConnectionGate::noteRefusal(int errorNumber) {
    const bool lacksSomething = errorNumber == EMFILE || errorNumber == ENFILE ||
                                errorNumber == ENOMEM || errorNumber == ENOBUFS;
    if (!lacksSomething) return;
    if (!waiting_.empty()) {
        waiting_.erase(waiting_.begin());
    } else {
        poll(nullptr, 0, Connection::kPollMilliseconds);
    }
}

void ConnectionGate::acceptSome() {
    for (int i = 0; i < kMostAtOnce; ++i) {
        makeRoom();
        if (load_->connections >= mostOpen_) return;
        const int socket = accept4(listening_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (socket < 0) return noteRefusal(errno);
        waiting_.push_back(std::make_unique<Connection>(socket, load_));
    }
}

}  // namespace app
