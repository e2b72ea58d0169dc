// SPDX-License-Identifier: MIT
#include "scan/NameList.h"

namespace app {

namespace {

constexpr std::size_t kDecidingBytes = 65536;
constexpr std::size_t kMostNameBytes = 65536;

}  // namespace

NameList::NameList(bool endsInNul) {
    if (endsInNul) end_ = '\0';
}

std::vector<std::string> NameList::put(std::string_view bytes) {
    waiting_ += bytes;
    if (!end_ && bytes.find('\0') != std::string_view::npos) end_ = '\0';
    if (!end_ && waiting_.size() >= kDecidingBytes) end_ = '\n';
    return takeComplete();
}

std::vector<std::string> NameList::finish() {
    if (!end_) end_ = '\n';
    if (!waiting_.empty()) waiting_ += *end_;
    return takeComplete();
}

std::vector<std::string> NameList::takeComplete() {
    std::vector<std::string> names;
    if (!end_) return names;
    std::size_t from = 0;
    for (;;) {
        const std::size_t to = waiting_.find(*end_, from);
        if (to == std::string::npos) break;
        if (to > from) names.push_back(waiting_.substr(from, to - from));
        from = to + 1;
    }
    waiting_.erase(0, from);
    shorten();
    return names;
}

/** What comes next is added behind, and lost the same way until the name ends. */
void NameList::shorten() {
    if (waiting_.size() > kMostNameBytes) waiting_.resize(kMostNameBytes);
}

}  // namespace app
