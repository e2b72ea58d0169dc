// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "serve/requestFrame.h"

namespace app {

/** What the open connections take, all together. Any thread may change it. */
struct ConnectionLoad {
    std::atomic<int> connections{0};
    /** Of requests, those that are being answered included. */
    std::atomic<std::size_t> receivedBytes{0};
};

/** A client's connection, and what came of its request. Closed with this object. */
class Connection {
public:
    using Clock = std::chrono::steady_clock;
    /** How soon the end of the program is noticed. */
    static constexpr int kPollMilliseconds = 100;

    /** @param socket  is owned from now on, and does not block
     *  @param load    counts this one in */
    Connection(int socket, std::shared_ptr<ConnectionLoad> load);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int socket() const { return socket_; }
    Clock::time_point since() const { return since_; }
    const std::string& received() const { return received_; }

    enum class Reading {
        waiting,  ///< all that has come so far is read
        ended,    ///< the client has closed it, or it failed
        full,     ///< there is more than may come
    };

    /** Reads what has come, up to so many bytes in all. */
    Reading read(std::size_t mostBytes);

    /** Sends as a client is able to take it; one that takes less than 32 KB a second for long, or
     *  nothing for a minute, is given up.
     *  @param isStopped  set when the program ends
     *  @return false when not all of it was sent; nothing more can be sent then */
    bool send(std::string_view bytes, const std::atomic<bool>& isStopped);

    /** Answers with the refusal if that can be done at once. */
    void dismiss(const Refusal& refusal);

private:
    Clock::time_point deadline() const;
    bool awaitRoom(const std::atomic<bool>& isStopped) const;

    int socket_;
    std::shared_ptr<ConnectionLoad> load_;
    Clock::time_point since_ = Clock::now();
    Clock::time_point answeredSince_{};
    /** When the client last took bytes of the answer. */
    Clock::time_point takenAt_{};
    std::string received_;
    std::size_t sent_ = 0;
    bool isBroken_ = false;
};

}  // namespace app
