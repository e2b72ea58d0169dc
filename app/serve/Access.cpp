// SPDX-License-Identifier: MIT
#include "serve/Access.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <netinet/in.h>
#include <sys/random.h>

#include "serve/Listener.h"

namespace app {

namespace {

constexpr int kUsualPort = 80;

// A browser sends the cookies of all ports, and those of programs that have ended pile up until its
// requests are too long.
constexpr int kCookieSeconds = 86400;

constexpr const char* kTokenName = "token";

constexpr const char* kUninvited =
    "<!doctype html><html lang=\"en\"><meta charset=\"utf-8\"><title>Beat Atlas</title>"
    "<p>Open the address that <code>beatatlas serve</code> printed when it was started.</p></html>";

/** 256 bits from the system, in hexadecimal. */
std::string newSecret() {
    std::array<unsigned char, 32> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        throw std::system_error(errno, std::generic_category(), "the system has no random numbers");
    std::string text;
    for (const unsigned char byte : bytes) text += fmt::format("{:02x}", byte);
    return text;
}

/** Takes the same time wherever the texts differ. */
bool isSame(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(b[i]);
    return difference == 0;
}

HttpReply uninvited() {
    HttpReply reply;
    reply.status = 403;
    reply.type = "text/html; charset=utf-8";
    reply.body = kUninvited;
    return reply;
}

}  // namespace

bool isNumericHost(const std::string& host) {
    in6_addr ignored{};
    if (inet_pton(AF_INET, host.c_str(), &ignored) == 1) return true;
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    return isBracketed &&
           inet_pton(AF_INET6, host.substr(1, host.size() - 2).c_str(), &ignored) == 1;
}

Access::Access(const std::string& address, int port, bool isForAll)
    : home_(hostName(address)), port_(port), isForAll_(isForAll), token_(newSecret()),
      pass_(newSecret()) {}

std::string Access::invitation() const {
    return fmt::format("http://{}:{}/?{}={}", isForAll_ ? "127.0.0.1" : home_, port_, kTokenName,
                       token_);
}

/** A name could be made to lead here by whoever owns it; an address in numbers could not. */
bool Access::isOwnHost(const std::string& host) const {
    // Browsers leave out the port that is the usual one.
    const std::string suffix = port_ == kUsualPort ? "" : fmt::format(":{}", port_);
    if (!host.ends_with(suffix)) return false;
    const std::string name = host.substr(0, host.size() - suffix.size());
    if (name == home_ || name == "localhost") return true;
    return isForAll_ && isNumericHost(name);
}

bool Access::isInvited(const HttpRequest& request) const {
    const auto token = request.parameter(kTokenName);
    return request.method == "GET" && request.path == "/" && token && isSame(*token, token_);
}

/** Browsers keep cookies of all programs on a computer together, whatever their ports. */
bool Access::hasCookie(const HttpRequest& request) const {
    const std::string wanted = fmt::format("beatatlas-{}=", port_);
    std::string_view cookies = request.cookies;
    while (!cookies.empty()) {
        const std::size_t end = cookies.find(';');
        std::string_view cookie = cookies.substr(0, end);
        while (!cookie.empty() && cookie.front() == ' ') cookie.remove_prefix(1);
        if (cookie.starts_with(wanted) && isSame(cookie.substr(wanted.size()), pass_)) return true;
        if (end == std::string_view::npos) break;
        cookies.remove_prefix(end + 1);
    }
    return false;
}

HttpReply Access::admission() const {
    HttpReply reply;
    reply.status = 303;
    reply.headers = {
        {"Location", "/"},
        {"Set-Cookie", fmt::format("beatatlas-{}={}; HttpOnly; SameSite=Strict; Path=/; Max-Age={}",
                                   port_, pass_, kCookieSeconds)}};
    return reply;
}

std::optional<HttpReply> Access::refusal(const HttpRequest& request) const {
    if (!isOwnHost(request.host))
        return errorReply(421, "this server is not the one that was asked for");
    if (request.method != "GET" && request.method != "HEAD" && request.method != "POST")
        return errorReply(405, "only GET, HEAD and POST are answered");
    const std::string own = "http://" + request.host;
    if (!request.origin.empty() && request.origin != own)
        return errorReply(403, "pages of other sites are not answered");
    const bool isForeign = request.fetchSite == "cross-site" || request.fetchSite == "same-site";
    if (isForeign && request.path != "/")
        return errorReply(403, "pages of other sites are not answered");
    if (isInvited(request)) return admission();
    if (!hasCookie(request)) return uninvited();
    if (request.isReading()) return std::nullopt;
    if (request.origin.empty())
        return errorReply(403, "a change must name the page that asks for it");
    if (request.contentType != "application/json")
        return errorReply(415, "a change is taken as application/json alone");
    return std::nullopt;
}

}  // namespace app
