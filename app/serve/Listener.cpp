// SPDX-License-Identifier: MIT
#include "serve/Listener.h"

#include <cerrno>
#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"

namespace app {

namespace {

constexpr int kBacklog = 1024;

struct AddressFree {
    void operator()(addrinfo* address) const { freeaddrinfo(address); }
};
using Address = std::unique_ptr<addrinfo, AddressFree>;

/** No name is looked up: what a name leads to may change. */
Address addressOf(const std::string& text, int port) {
    addrinfo wanted{};
    wanted.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(text.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0)
        throw base::UsageError("--listen takes an address in numbers, such as 192.168.1.5 or ::, "
                               "not " +
                               base::displayName(text));
    return Address(found);
}

bool isLoopbackAddress(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        sockaddr_in four{};
        std::memcpy(&four, &address, sizeof four);
        return (ntohl(four.sin_addr.s_addr) >> 24) == IN_LOOPBACKNET;
    }
    sockaddr_in6 six{};
    std::memcpy(&six, &address, sizeof six);
    return IN6_IS_ADDR_LOOPBACK(&six.sin6_addr);
}

int portOf(int socket) {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    if (getsockname(socket, reinterpret_cast<sockaddr*>(&bound), &length) != 0) return 0;
    // The port stands in the same place for both kinds of addresses.
    sockaddr_in four{};
    std::memcpy(&four, &bound, sizeof four);
    return ntohs(four.sin_port);
}

}  // namespace

Listener::Listener(const std::string& address, int port) {
    const Address found = addressOf(address, port);
    isLoopback_ = isLoopbackAddress(*found->ai_addr);
    socket_ = ::socket(found->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int yes = 1;
    // The port of a server that ended a moment ago is free.
    setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (bind(socket_, found->ai_addr, found->ai_addrlen) != 0 || listen(socket_, kBacklog) != 0) {
        const std::string reason = base::systemReason(errno);
        close(socket_);
        throw base::OutputError("cannot listen at " + hostName(address) + ":" +
                                std::to_string(port) + ": " + reason);
    }
    port_ = portOf(socket_);
}

Listener::~Listener() {
    close(socket_);
}

std::string hostName(const std::string& address) {
    return address.find(':') == std::string::npos ? address : "[" + address + "]";
}

}  // namespace app
