// SPDX-License-Identifier: MIT
#include "serve/fileReply.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/errors.h"
#include "scan/fileState.h"
#include "serve/plainNumber.h"

namespace app {

namespace {

constexpr std::size_t kFileBlockBytes = 65536;

constexpr std::array kMediaTypes = {
    std::pair("mp3", "audio/mpeg"), std::pair("flac", "audio/flac"),
    std::pair("wav", "audio/wav"),  std::pair("ogg", "audio/ogg"),
    std::pair("mov", "audio/mp4"),  std::pair("matroska", "audio/webm"),
    std::pair("aac", "audio/aac"),  std::pair("aiff", "audio/aiff"),
};

/** @param container  FFmpeg's name, several with commas for kinds that are alike */
std::string mediaTypeOf(const std::string& container) {
    const std::string first = container.substr(0, container.find(','));
    for (const auto& [name, type] : kMediaTypes) {
        if (first == name) return type;
    }
    return "application/octet-stream";
}

/** An open file that is closed with this object. */
class ReadFile {
public:
    explicit ReadFile(const std::string& path)
        // A pipe that lies in a file's place would make opening wait for its writer.
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
        struct stat status {};
        if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) {
            const int reason = errno;
            if (descriptor_ >= 0) close(descriptor_);
            throw base::TrackError("cannot be opened: " + base::systemReason(reason));
        }
        state_ = fileStateOf(status);
        if (S_ISREG(status.st_mode)) return;
        close(descriptor_);
        throw base::TrackError("is not a file");
    }
    ~ReadFile() { close(descriptor_); }
    ReadFile(const ReadFile&) = delete;
    ReadFile& operator=(const ReadFile&) = delete;

    std::uint64_t size() const { return static_cast<std::uint64_t>(state_.size); }
    const catalogue::FileState& state() const { return state_; }

    /** @return false when the file is shorter now, or the sink takes no more */
    bool send(ByteRange range, const ByteSink& sink) const {
        std::vector<char> block(kFileBlockBytes);
        while (range.length > 0) {
            const std::size_t wanted = std::min<std::uint64_t>(block.size(), range.length);
            const ssize_t count =
                pread(descriptor_, block.data(), wanted, static_cast<off_t>(range.first));
            if (count <= 0 || !sink({block.data(), static_cast<std::size_t>(count)})) return false;
            range.first += static_cast<std::uint64_t>(count);
            range.length -= static_cast<std::uint64_t>(count);
        }
        return true;
    }

private:
    int descriptor_;
    catalogue::FileState state_;
};

HttpReply refusedRange(std::uint64_t length) {
    HttpReply reply = errorReply(416, "there is no such part of the file");
    reply.headers.emplace_back("Content-Range", fmt::format("bytes */{}", length));
    return reply;
}

}  // namespace

std::optional<ByteRange> rangeOf(const std::string& header, std::uint64_t length) {
    constexpr std::string_view kUnit = "bytes=";
    if (!header.starts_with(kUnit)) return std::nullopt;
    const std::string_view range = std::string_view(header).substr(kUnit.size());
    const std::size_t dash = range.find('-');
    if (dash == std::string_view::npos) return std::nullopt;
    const auto from = plainNumber<std::uint64_t>(range.substr(0, dash));
    const auto to = plainNumber<std::uint64_t>(range.substr(dash + 1));
    if (dash == 0) {
        if (!to || *to == 0 || length == 0) return std::nullopt;
        return ByteRange{length - std::min(*to, length), std::min(*to, length)};
    }
    const bool isOpen = dash + 1 == range.size();
    if (!from || *from >= length || (!isOpen && (!to || *to < *from))) return std::nullopt;
    const std::uint64_t last = isOpen ? length - 1 : std::min(*to, length - 1);
    return ByteRange{*from, last - *from + 1};
}

void requireUnchanged(const catalogue::FileState& now, const catalogue::FileState& analysed) {
    if (now != analysed) throw base::TrackError("has changed since it was analysed");
}

HttpReply fileReply(const catalogue::TrackRow& track, const std::string& range) {
    const auto file = std::make_shared<ReadFile>(track.path);
    requireUnchanged(file->state(), track.state);
    HttpReply reply;
    ByteRange part{0, file->size()};
    if (!range.empty()) {
        const auto asked = rangeOf(range, file->size());
        if (!asked) return refusedRange(file->size());
        part = *asked;
        reply.status = 206;
        reply.headers.emplace_back(
            "Content-Range",
            fmt::format("bytes {}-{}/{}", part.first, part.first + part.length - 1, file->size()));
    }
    reply.headers.emplace_back("Accept-Ranges", "bytes");
    reply.type = mediaTypeOf(track.format.container);
    // An answer of a stated length of 0 would count as one of unknown length.
    if (part.length == 0) return reply;
    reply.length = part.length;
    reply.write = [file, part](const ByteSink& sink) { return file->send(part, sink); };
    return reply;
}

}  // namespace app
