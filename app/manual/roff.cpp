// SPDX-License-Identifier: MIT
#include "manual/roff.h"

#include <array>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

namespace manual {

namespace {

constexpr std::size_t kLineColumns = 78;

// Outside of ASCII pages would depend on the reader's locale; these signs have names of their own.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kSigns = {{{"\\", "\\e"},
                                                                                  {"…", "..."},
                                                                                  {"–", "\\(en"},
                                                                                  {"é", "\\('e"},
                                                                                  {"`", "\\(ga"},
                                                                                  {"^", "\\(ha"},
                                                                                  {"~", "\\(ti"},
                                                                                  {"-", "\\-"}}};

/** @param keepsHyphens  they join words, and may be printed longer or shorter than a shell's dash */
std::string escaped(std::string_view text, bool keepsHyphens) {
    std::string roff;
    while (!text.empty()) {
        std::string_view taken = text.substr(0, 1);
        std::string_view written = taken;
        for (const auto& [sign, name] : kSigns) {
            if (!text.starts_with(sign) || (sign == "-" && keepsHyphens)) continue;
            taken = sign;
            written = name;
        }
        roff += written;
        text.remove_prefix(taken.size());
    }
    return roff;
}

bool isOption(const std::string& word) {
    return word.find_first_not_of("([\"") == word.find('-');
}

}  // namespace

std::string roffText(const std::string& text) {
    std::string lines;
    std::size_t columns = 0;
    for (const std::string& word : CLI::detail::split(text, ' ')) {
        std::string roff = escaped(word, !isOption(word));
        const bool breaks = columns > 0 && columns + 1 + roff.size() > kLineColumns;
        if (breaks) columns = 0;
        // At the beginning of a line these would begin a request.
        const bool isRequest = columns == 0 && (roff.starts_with('.') || roff.starts_with('\''));
        if (isRequest) roff.insert(0, "\\&");
        if (!lines.empty()) lines += breaks ? '\n' : ' ';
        columns += roff.size() + (columns > 0 ? 1 : 0);
        lines += roff;
    }
    return lines;
}

std::string roffBold(const std::string& text) {
    return "\\fB" + escaped(text, false) + "\\fR";
}

std::string roffItalic(const std::string& text) {
    return "\\fI" + escaped(text, false) + "\\fR";
}

}  // namespace manual
