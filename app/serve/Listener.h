// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace app {

/** Where a socket listens. */
struct Place {
    /** In numbers. */
    std::string address;
    int port = 0;
};

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
    /** As the system writes it, "::1" for "0:0:0:0:0:0:0:1": browsers write it so, too. */
    const std::string& address() const { return place_.address; }
    int port() const { return place_.port; }

    /** Whether it listens at every address of the computer. */
    bool isForAll() const { return address() == "0.0.0.0" || address() == "::"; }

    /** Whether only programs on the same computer can reach it. */
    bool isLoopback() const { return isLoopback_; }

private:
    int socket_ = -1;
    Place place_;
    bool isLoopback_ = false;
};

/** As an address stands in the address of a page: "[::1]" for "::1". */
std::string hostName(const std::string& address);

}  // namespace app
