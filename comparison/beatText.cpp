// SPDX-License-Identifier: MIT
#include "comparison/beatText.h"

#include <charconv>
#include <cmath>
#include <string>
#include <system_error>

#include <fmt/format.h>

#include "base/displayName.h"
#include "base/errors.h"

namespace comparison {

namespace {

constexpr std::string_view kSeparators = " \t,;\r\f";
constexpr std::size_t kLongestShown = 40;

/** The next word, which is taken off the line; empty when nothing is left. */
std::string_view takeWord(std::string_view& line) {
    const std::size_t begin = line.find_first_not_of(kSeparators);
    line.remove_prefix(std::min(begin, line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(kSeparators));
    line.remove_prefix(word.size());
    return word;
}

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || stop != end) return std::nullopt;
    return number;
}

/** "3", or what is behind the bar: "12.3", "12:3". */
std::optional<int> beatNumberOf(std::string_view text) {
    const std::size_t point = text.find_first_of(".:");
    if (point == std::string_view::npos) return numberOf<int>(text);
    if (!numberOf<int>(text.substr(0, point))) return std::nullopt;
    return numberOf<int>(text.substr(point + 1));
}

/** @param time  as it is written
 *  @param rest  of the line, behind the time */
std::optional<int> numberBehind(std::string_view time, std::string_view rest) {
    const std::string_view second = takeWord(rest);
    const std::string_view third = takeWord(rest);
    // A label has an end and a text; without a text it is a place, and its end the time again.
    if (!third.empty()) return beatNumberOf(third);
    const bool isEnd = second == time && time.find('.') != std::string_view::npos;
    return isEnd ? std::nullopt : beatNumberOf(second);
}

std::optional<SheetBeat> beatOf(std::string_view line, std::size_t number) {
    const std::string_view whole = line;
    const std::string_view word = takeWord(line);
    if (word.empty() || word.front() == '#' || word.front() == '%' || word.front() == '\\')
        return std::nullopt;
    const auto seconds = numberOf<double>(word);
    if (!seconds || !std::isfinite(*seconds))
        throw base::TrackError(
            fmt::format("is neither audio nor a list of beats: line {} begins with no time: {}",
                        number, base::displayName(whole.substr(0, kLongestShown))));
    return SheetBeat{*seconds, numberBehind(word, line)};
}

}  // namespace

BeatSheet readBeatText(std::string_view text) {
    BeatSheet sheet;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (const auto beat = beatOf(text.substr(0, end), number)) sheet.beats.push_back(*beat);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return sheet;
}

}  // namespace comparison
