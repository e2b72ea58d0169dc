// SPDX-License-Identifier: MIT
#include "scan/playlist.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>

#include <iconv.h>
#include <sys/stat.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "io/fileEnding.h"

namespace app {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";
constexpr const char* kWestern = "WINDOWS-1252";

// Longer than the lists of whole libraries; what is longer is none.
constexpr std::size_t kMostListBytes = std::size_t{256} << 20U;

/** As UTF-8; what the encoding does not know becomes a question mark.
 *  @param unit  bytes of the encoding's smallest character, over which what is unknown is left */
std::string toUtf8(std::string_view text, const char* encoding, std::size_t unit) {
    void* converter = iconv_open("UTF-8", encoding);
    if (reinterpret_cast<std::intptr_t>(converter) == -1) return std::string(text);
    std::string bytes(text);
    std::string converted(bytes.size() * 3 + 4, '\0');
    char* in = bytes.data();
    std::size_t inLeft = bytes.size();
    char* out = converted.data();
    std::size_t outLeft = converted.size();
    while (inLeft > 0 && iconv(converter, &in, &inLeft, &out, &outLeft) == std::size_t(-1)) {
        if (errno == E2BIG || errno == EINVAL || inLeft < unit) break;
        *out++ = '?';
        in += unit;
        --outLeft;
        inLeft -= unit;
    }
    iconv_close(converter);
    converted.resize(converted.size() - outLeft);
    return converted;
}

std::string readWhole(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw base::TrackError("cannot be opened: " + base::systemReason(errno),
                               base::TrackError::Kind::unreadable);
    std::string text;
    text.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (file.bad()) throw base::TrackError("cannot be read", base::TrackError::Kind::unreadable);
    return text;
}

std::string textOf(const std::string& bytes) {
    const std::string_view view = bytes;
    if (view.starts_with(kUtf8Mark)) return std::string(view.substr(kUtf8Mark.size()));
    if (view.starts_with(kLittleMark)) return toUtf8(view.substr(2), "UTF-16LE", 2);
    if (view.starts_with(kBigMark)) return toUtf8(view.substr(2), "UTF-16BE", 2);
    return bytes;
}

bool isInPlace(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0;
}

std::string beside(const std::string& folder, const std::string& name) {
    return name.starts_with('/') ? name : folder + name;
}

std::string withoutEscapes(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned value = 0;
        const char* digits = text.data() + i + 1;
        const bool isEscape = text[i] == '%' && i + 2 < text.size() &&
                              std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2;
        plain += isEscape ? static_cast<char>(value) : text[i];
        if (isEscape) i += 2;
    }
    return plain;
}

/** The path of a "file:" address of this machine. */
std::optional<std::string> pathOfAddress(std::string_view address) {
    constexpr std::string_view kFile = "file:";
    if (!hasEnding(address.substr(0, kFile.size()), kFile)) return std::nullopt;
    std::string_view rest = address.substr(kFile.size());
    for (const std::string_view here : {"//localhost/", "///"}) {
        if (rest.starts_with(here)) rest.remove_prefix(here.size() - 1);
    }
    if (!rest.starts_with('/') || rest.starts_with("//")) return std::nullopt;
    return withoutEscapes(rest);
}

/** "http://…", and whatever else begins with a scheme. */
bool isAddress(std::string_view name) {
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos || colon < 2) return false;
    const std::string_view scheme = name.substr(0, colon);
    const bool isScheme = std::all_of(scheme.begin(), scheme.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '+' || c == '-' || c == '.';
    });
    return isScheme && (name.substr(colon + 1).starts_with("//") || scheme == "file");
}

/** The file that a name was most likely meant for; the name as it stands if none is there. */
std::string fileNamed(const std::string& folder, const std::string& name) {
    std::string western = base::isUtf8(name) ? name : toUtf8(name, kWestern, 1);
    std::string slashed = western;
    std::replace(slashed.begin(), slashed.end(), '\\', '/');
    for (const std::string& meant : {name, western, slashed, withoutEscapes(slashed)}) {
        std::string path = beside(folder, meant);
        if (isInPlace(path)) return path;
    }
    return beside(folder, name);
}

/** What a line of PLS names: "File12=song.mp3". */
std::string valueOfPls(const std::string& line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos || equals < 5) return {};
    std::string key = line.substr(0, 4);
    for (char& letter : key)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    const bool isNumbered = std::all_of(line.begin() + 4, line.begin() + static_cast<long>(equals),
                                        [](char c) { return c >= '0' && c <= '9'; });
    return key == "file" && isNumbered ? line.substr(equals + 1) : std::string();
}

}  // namespace

bool isPlaylist(const std::string& path) {
    return hasEnding(path, ".m3u") || hasEnding(path, ".m3u8") || hasEnding(path, ".pls");
}

Playlist readPlaylist(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 &&
        static_cast<std::size_t>(status.st_size) > kMostListBytes)
        throw base::TrackError("is too long for a playlist");
    std::string whole = textOf(readWhole(path));
    // Lines end in LF, in CR and LF, or, of old, in CR; a line without a name is none.
    std::replace(whole.begin(), whole.end(), '\r', '\n');
    std::istringstream text(whole);
    const std::string folder = path.substr(0, path.rfind('/') + 1);
    const bool isPls = hasEnding(path, ".pls");
    Playlist list;
    for (std::string line; std::getline(text, line);) {
        const std::string name = isPls ? valueOfPls(line) : line;
        if (name.empty() || (!isPls && name.front() == '#')) continue;
        if (const auto file = pathOfAddress(name))
            list.files.push_back(*file);
        else if (isAddress(name))
            list.addresses.push_back(name);
        else
            list.files.push_back(fileNamed(folder, name));
    }
    return list;
}

}  // namespace app
