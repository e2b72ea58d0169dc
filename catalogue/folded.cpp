// SPDX-License-Identifier: MIT
#include "catalogue/folded.h"

#include <cstdlib>
#include <memory>

#include <utf8proc.h>

#include "base/displayName.h"

namespace catalogue {

std::string folded(std::string_view text) {
    if (text.empty()) return {};
    const std::string shown = base::displayName(text);
    utf8proc_uint8_t* result = nullptr;
    // Marks must be apart from their letters to be left out.
    constexpr auto kOptions = static_cast<utf8proc_option_t>(
        UTF8PROC_COMPOSE | UTF8PROC_COMPAT | UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK);
    const utf8proc_ssize_t length =
        utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(shown.data()),
                     static_cast<utf8proc_ssize_t>(shown.size()), &result, kOptions);
    if (length == UTF8PROC_ERROR_NOMEM) throw std::bad_alloc();
    if (length < 0) return shown;
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owned(result, &std::free);
    return {reinterpret_cast<const char*>(result), static_cast<std::size_t>(length)};
}

std::string searchText(std::string_view path, std::string_view artist, std::string_view title) {
    return folded(path) + '\n' + folded(artist) + '\n' + folded(title);
}

}  // namespace catalogue
