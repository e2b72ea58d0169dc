// SPDX-License-Identifier: MIT
#include "serve/Exchange.h"

#include <array>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace test {

std::string Answer::header(const std::string& name) const {
    const std::string wanted = "\r\n" + name + ": ";
    const std::size_t start = head.find(wanted);
    if (start == std::string::npos) return "";
    const std::size_t value = start + wanted.size();
    return head.substr(value, head.find("\r\n", value) - value);
}

Client::Client(int port, const char* address)
    : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(port));
    inet_pton(AF_INET, address, &place.sin_addr);
    const timeval patience{10, 0};
    setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    isConnected_ = connect(socket_, reinterpret_cast<sockaddr*>(&place), sizeof place) == 0;
}

Client::~Client() {
    close(socket_);
}

void Client::send(const std::string& bytes) const {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count =
            ::send(socket_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return;
        sent += static_cast<std::size_t>(count);
    }
}

Answer Client::receive() const {
    std::string bytes;
    std::array<char, 65536> block{};
    for (;;) {
        const ssize_t count = recv(socket_, block.data(), block.size(), 0);
        if (count <= 0) break;
        bytes.append(block.data(), static_cast<std::size_t>(count));
    }
    Answer answer;
    const std::size_t end = bytes.find("\r\n\r\n");
    if (!bytes.starts_with("HTTP/1.1 ") || end == std::string::npos) return answer;
    answer.status = std::stoi(bytes.substr(9, 3));
    answer.head = bytes.substr(0, end + 2);
    answer.body = bytes.substr(end + 4);
    return answer;
}

Answer sendAndReceive(int port, const std::string& bytes) {
    const Client client(port);
    client.send(bytes);
    return client.receive();
}

}  // namespace test
