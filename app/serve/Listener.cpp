// SPDX-License-Identifier: MIT
#include "serve/Listener.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
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

/** Where a socket listens, as the system writes it: an address has many other spellings.
 *  @throws OutputError */
Place placeOf(int socket) {
    sockaddr_storage bound{};
    socklen_t length = sizeof bound;
    auto* address = reinterpret_cast<sockaddr*>(&bound);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> port{};
    if (getsockname(socket, address, &length) != 0 ||
        getnameinfo(address, length, host.data(), host.size(), port.data(), port.size(),
                    NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        throw base::OutputError("the system does not say where it listens");
    return {host.data(), std::stoi(port.data())};
}

/** Where the system has IPv6 alone for such a socket unless it is asked, IPv4 reaches it, too. */
void prepare(int socket, int family) {
    const int yes = 1;
    const int no = 0;
    // The port of a server that ended a moment ago is free.
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (family == AF_INET6) setsockopt(socket, IPPROTO_IPV6, IPV6_V6ONLY, &no, sizeof no);
}

}  // namespace

Listener::Listener(const std::string& address, int port) {
    const Address found = addressOf(address, port);
    isLoopback_ = isLoopbackAddress(*found->ai_addr);
    socket_ = ::socket(found->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (socket_ >= 0) prepare(socket_, found->ai_family);
    if (socket_ < 0 || bind(socket_, found->ai_addr, found->ai_addrlen) != 0 ||
        listen(socket_, kBacklog) != 0) {
        const std::string reason = base::systemReason(errno);
        if (socket_ >= 0) close(socket_);
        throw base::OutputError("cannot listen at " + hostName(address) + ":" +
                                std::to_string(port) + ": " + reason);
    }
    try {
        place_ = placeOf(socket_);
    } catch (...) {
        close(socket_);
        throw;
    }
}

Listener::~Listener() {
    close(socket_);
}

std::string hostName(const std::string& address) {
    return address.find(':') == std::string::npos ? address : "[" + address + "]";
}

}  // namespace app
