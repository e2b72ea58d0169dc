// SPDX-License-Identifier: MIT
#include "scan/usualLength.h"

#include <algorithm>
#include <array>

#include "io/fileEnding.h"

namespace app {

namespace {

struct MusicEnding {
    std::string_view ending;
    double bytesPerSecond;
};

// Of CDs: what is lossless at 1,411 kbit/s, or about two thirds of that where it is compressed.
constexpr double kPlain = 176400.0;
constexpr double kLossless = 110000.0;
constexpr double kDense = 352800.0;
constexpr double kLossy = 30000.0;
constexpr double kOpus = 16000.0;
constexpr double kSpeech = 2000.0;
constexpr double kFilm = 300000.0;

constexpr std::array<MusicEnding, 45> kEndings = {{
    {".mp3", kLossy},      {".m4a", kLossy},    {".ogg", kLossy},     {".flac", kLossless},
    {".wav", kPlain},      {".opus", kOpus},    {".aif", kPlain},     {".aiff", kPlain},
    {".aifc", kPlain},     {".wma", kLossy},    {".aac", kLossy},     {".alac", kLossless},
    {".wv", kLossless},    {".ape", kLossless}, {".mpc", kLossy},     {".oga", kLossy},
    {".m4b", kSpeech * 4}, {".m4r", kLossy},    {".mp2", kLossy},     {".mp1", kLossy},
    {".mpga", kLossy},     {".mka", kLossless}, {".mp4", kFilm},      {".m4v", kFilm},
    {".mov", kFilm},       {".mkv", kFilm},     {".webm", kFilm},     {".avi", kFilm},
    {".flv", kFilm},       {".mpg", kFilm},     {".mpeg", kFilm},     {".ts", kFilm},
    {".wmv", kFilm},       {".3gp", kLossy},    {".amr", kSpeech},    {".ac3", kLossy * 2},
    {".eac3", kLossy * 2}, {".dts", kPlain},    {".dsf", kDense * 2}, {".tta", kLossless},
    {".tak", kLossless},   {".shn", kLossless}, {".caf", kPlain},     {".w64", kPlain},
    {".au", kPlain},
}};

const MusicEnding* endingOf(std::string_view path) {
    const auto found = std::find_if(kEndings.begin(), kEndings.end(), [&](const auto& candidate) {
        return hasEnding(path, candidate.ending);
    });
    return found == kEndings.end() ? nullptr : &*found;
}

}  // namespace

bool hasMusicEnding(std::string_view path) {
    return endingOf(path) != nullptr;
}

std::vector<std::string> musicEndings() {
    std::vector<std::string> endings;
    for (const MusicEnding& known : kEndings) endings.emplace_back(known.ending);
    return endings;
}

double usualSeconds(std::string_view path, std::int64_t bytes) {
    const MusicEnding* ending = endingOf(path);
    // What the file is cannot be known: most are pictures and texts, looked at and put aside.
    return ending == nullptr ? 0.0 : static_cast<double>(bytes) / ending->bytesPerSecond;
}

}  // namespace app
