// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** A socket at which connections arrive. */
class Listener {
public:
    /** @param address  of this computer, in numbers: "127.0.0.1", "::1", "0.0.0.0" for all
     *  @param port     0: any that is free
     *  @throws UsageError when the address is none; OutputError when it cannot be listened at */
    Listener(const std::string& address, int port);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    int socket() const { return socket_; }
    int port() const { return port_; }

    /** Whether only programs on the same computer can reach it. */
    bool isLoopback() const { return isLoopback_; }

private:
    int socket_ = -1;
    int port_ = 0;
    bool isLoopback_ = false;
};

/** As an address stands in the address of a page: "[::1]" for "::1". */
std::string hostName(const std::string& address);

}  // namespace app
