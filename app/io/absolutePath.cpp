// SPDX-License-Identifier: MIT
#include "io/absolutePath.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

namespace app {

namespace {

struct Free {
    void operator()(char* text) const { std::free(text); }
};

std::string parentOf(const std::string& folder) {
    const std::unique_ptr<char, Free> real(realpath((folder + "/..").c_str(), nullptr));
    if (real) return real.get() == std::string_view("/") ? "" : real.get();
    return folder.substr(0, folder.empty() ? 0 : folder.rfind('/'));
}

}  // namespace

std::string absolutePath(const std::string& path) {
    std::error_code failure;
    std::string whole = path;
    if (!path.starts_with('/'))
        whole = std::filesystem::current_path(failure).string() + "/" + path;
    std::string result;
    std::string_view rest = whole;
    while (!rest.empty()) {
        rest.remove_prefix(std::min(rest.find_first_not_of('/'), rest.size()));
        const std::string_view name = rest.substr(0, rest.find('/'));
        rest.remove_prefix(name.size());
        if (name == "..") result = parentOf(result);
        if (name.empty() || name == "." || name == "..") continue;
        result += '/';
        result += name;
    }
    return result.empty() ? "/" : result;
}

}  // namespace app
