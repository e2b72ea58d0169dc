// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace test {

/** An answer as it came over the network. */
struct Answer {
    /** 0: nothing that begins like an answer came before the connection ended. */
    int status = 0;
    /** With the line of the status. */
    std::string head;
    std::string body;

    /** The value of that header; "" when there is none. */
    std::string header(const std::string& name) const;

    nlohmann::json json() const { return nlohmann::json::parse(body); }
};

/** A connection to a port of this computer that sends any bytes, as fast or slow as a test wants. */
class Client {
public:
    explicit Client(int port, const char* address = "127.0.0.1");
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    bool isConnected() const { return isConnected_; }
    void send(const std::string& bytes) const;

    /** Everything until the server closes the connection, or nothing comes for ten seconds. */
    Answer receive() const;

private:
    int socket_;
    bool isConnected_;
};

/** Sends the bytes in a connection of their own and receives what comes. */
Answer sendAndReceive(int port, const std::string& bytes);

}  // namespace test
