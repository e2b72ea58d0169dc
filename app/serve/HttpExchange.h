// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace app {

/** What a client asks for. Everything in it is the client's word. */
struct HttpRequest {
    std::string method;
    /** Without what follows '?', its %XX resolved: any bytes. */
    std::string path;
    std::multimap<std::string, std::string> parameters;
    std::string body;

    /** @name Of its headers; empty where there is none
     *  @{ */
    std::string host;
    std::string origin;
    /** Sec-Fetch-Site: who caused the request, by the browser's account. */
    std::string fetchSite;
    std::string cookies;
    std::string contentType;
    std::string range;
    /** @} */

    /** The first of that name; nothing when there is none. */
    std::optional<std::string> parameter(const std::string& name) const {
        const auto found = parameters.find(name);
        if (found == parameters.end()) return std::nullopt;
        return found->second;
    }

    bool isReading() const { return method == "GET" || method == "HEAD"; }
};

/** Takes the next bytes of an answer. @return false when the client no longer takes them */
using ByteSink = std::function<bool(std::string_view)>;

/** What the client gets. */
struct HttpReply {
    int status = 200;
    /** Content-Type; empty: there is no content. */
    std::string type;
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;

    /** Writes the content in place of the body. @return false when it ended early */
    std::function<bool(const ByteSink&)> write;
    /** Bytes that write() writes; nothing: not known. */
    std::optional<std::uint64_t> length;
};

/** A sentence for people, as a program reads it: {"error": "…"}. */
HttpReply errorReply(int status, const std::string& sentence);

HttpReply jsonReply(std::string json);

}  // namespace app
