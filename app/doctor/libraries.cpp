// SPDX-License-Identifier: MIT
#include "doctor/libraries.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

#include <cairo.h>
#include <fmt/format.h>
#include <httplib.h>
#include <pango/pango.h>
#include <soxr.h>
#include <sqlite3.h>
#include <taglib.h>
#include <xxhash.h>

#include "media/ffmpeg.h"

extern "C" {
#include <libswresample/swresample.h>
}

namespace app {

namespace {

std::string dotted(unsigned major, unsigned minor, unsigned patch) {
    return fmt::format("{}.{}.{}", major, minor, patch);
}

/** As FFmpeg's libraries count: 8 bits for each of the last two numbers. */
std::string ffmpegVersion(unsigned version) {
    return dotted(version >> 16U, version >> 8U & 0xFFU, version & 0xFFU);
}

/** As xxHash counts: two decimal digits for each of the last two numbers. */
std::string xxhashVersion(unsigned version) {
    return dotted(version / 10000, version / 100 % 100, version % 100);
}

/** The numbers of a version: those of "libsoxr-0.1.3" are 0, 1 and 3. */
std::vector<long> numbersOf(const std::string& version) {
    std::vector<long> numbers;
    const std::size_t begin = std::min(version.find_first_of("0123456789"), version.size());
    std::istringstream parts(version.substr(begin));
    for (std::string part; std::getline(parts, part, '.');)
        numbers.push_back(std::strtol(part.c_str(), nullptr, 10));
    return numbers;
}

}  // namespace

bool Library::fits() const {
    if (running.empty()) return true;
    const std::vector<long> old = numbersOf(built);
    const std::vector<long> loaded = numbersOf(running);
    return !old.empty() && !loaded.empty() && old.front() == loaded.front() && loaded >= old;
}

std::vector<Library> libraries() {
    const auto text = [](const char* version) { return std::string(version); };
    return {
        {"libavformat", ffmpegVersion(LIBAVFORMAT_VERSION_INT), ffmpegVersion(avformat_version())},
        {"libavcodec", ffmpegVersion(LIBAVCODEC_VERSION_INT), ffmpegVersion(avcodec_version())},
        {"libavutil", ffmpegVersion(LIBAVUTIL_VERSION_INT), ffmpegVersion(avutil_version())},
        {"libswresample", ffmpegVersion(LIBSWRESAMPLE_VERSION_INT),
         ffmpegVersion(swresample_version())},
        {"libsoxr", text(SOXR_THIS_VERSION_STR),
         text(soxr_version()).substr(text("libsoxr-").size())},
        {"TagLib", dotted(TAGLIB_MAJOR_VERSION, TAGLIB_MINOR_VERSION, TAGLIB_PATCH_VERSION), ""},
        {"SQLite", SQLITE_VERSION, sqlite3_libversion()},
        {"cairo", CAIRO_VERSION_STRING, cairo_version_string()},
        {"Pango", PANGO_VERSION_STRING, pango_version_string()},
        {"xxHash", xxhashVersion(XXH_VERSION_NUMBER), xxhashVersion(XXH_versionNumber())},
        {"cpp-httplib", CPPHTTPLIB_VERSION, ""},
    };
}

}  // namespace app
