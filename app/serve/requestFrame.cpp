// SPDX-License-Identifier: MIT
#include "serve/requestFrame.h"

#include <algorithm>

#include "serve/plainNumber.h"

namespace app {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";

// "bytes=0-1" with two numbers of 64 bits. The library reads this header by a regular expression,
// whose depth grows with the text.
constexpr std::size_t kLongestRange = 64;

constexpr std::size_t kLongestLine = 8000;

constexpr Refusal kBad = {"400 Bad Request", "This is not a request as HTTP defines it.\n"};
constexpr Refusal kNoLength = {"411 Length Required",
                               "A request with a body has to state its length.\n"};
constexpr Refusal kTooLarge = {"413 Payload Too Large",
                               "The request's body is longer than 1 MB.\n"};
constexpr Refusal kLongRange = {"416 Range Not Satisfiable",
                                "Only one range of a file can be asked for.\n"};
constexpr Refusal kExpecting = {"417 Expectation Failed",
                                "A request is answered once all of it has arrived.\n"};
constexpr Refusal kTooLong = {
    "431 Request Header Fields Too Large",
    "The request is too long. Delete the cookies that the browser keeps for this address.\n"};

char lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

/** Whether the line has that name; then the value is what follows. */
bool takesHeader(std::string_view line, std::string_view name, std::string_view& value) {
    if (line.size() <= name.size() || line[name.size()] != ':') return false;
    if (!std::equal(name.begin(), name.end(), line.begin(),
                    [](char a, char b) { return a == lower(b); }))
        return false;
    value = line.substr(name.size() + 1);
    while (!value.empty() && (value.front() == ' ' || value.front() == '\t'))
        value.remove_prefix(1);
    while (!value.empty() && (value.back() == ' ' || value.back() == '\t')) value.remove_suffix(1);
    return true;
}

bool isPlainLine(std::string_view line) {
    const auto isControl = [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return (code < ' ' && character != '\t') || code == 0x7F;
    };
    return std::none_of(line.begin(), line.end(), isControl);
}

/** Reads what a line says of the request's length. @return why it is refused, or null */
const Refusal* readLine(std::string_view line, RequestFrame& frame, bool& hasLength) {
    std::string_view value;
    if (!isPlainLine(line)) return &kBad;
    if (line.size() > kLongestLine) return &kTooLong;
    if (takesHeader(line, "transfer-encoding", value)) return &kNoLength;
    if (takesHeader(line, "expect", value)) return &kExpecting;
    if (takesHeader(line, "range", value) && value.size() > kLongestRange) return &kLongRange;
    if (!takesHeader(line, "content-length", value)) return nullptr;
    const auto length = plainNumber<std::size_t>(value);
    // Two lengths are how a request is hidden in another one.
    if (!length || hasLength) return &kBad;
    if (*length > kMostBodyBytes) return &kTooLarge;
    frame.bodyBytes = *length;
    hasLength = true;
    return nullptr;
}

}  // namespace

RequestFrame frameOf(std::string_view received) {
    RequestFrame frame;
    const std::size_t end = received.substr(0, kMostHeadBytes).find(kHeadEnd);
    if (end == std::string_view::npos) {
        if (received.size() >= kMostHeadBytes) frame.refusal = &kTooLong;
        return frame;
    }
    frame.headBytes = end + kHeadEnd.size();
    bool hasLength = false;
    std::string_view head = received.substr(0, end + kLineEnd.size());
    while (!head.empty() && frame.refusal == nullptr) {
        const std::size_t lineEnd = head.find(kLineEnd);
        frame.refusal = readLine(head.substr(0, lineEnd), frame, hasLength);
        head.remove_prefix(lineEnd + kLineEnd.size());
    }
    return frame;
}

}  // namespace app
