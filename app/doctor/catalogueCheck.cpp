// SPDX-License-Identifier: MIT
#include "doctor/catalogueCheck.h"

#include <filesystem>
#include <map>
#include <set>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/Catalogue.h"
#include "catalogue/CatalogueError.h"
#include "catalogue/query/totals.h"
#include "catalogue/schema.h"
#include "cli/CatalogueArgument.h"
#include "cli/ConfigFile.h"
#include "output/textFormat.h"

namespace app {

namespace {

namespace fs = std::filesystem;

constexpr const char* kCatalogue = "catalogue";
constexpr double kBytesOfGigabyte = 1e9;

bool isMissingOrEmpty(const std::string& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    return status.type() == fs::file_type::not_found ||
           (fs::is_regular_file(status) && fs::file_size(path, failure) == 0);
}

/** By the rights that the program has, in the file and in its folder, where the log lies. */
bool mayBeWritten(const fs::path& file) {
    const fs::path folder = fs::absolute(file).parent_path();
    return faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0 &&
           faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

Check checkOpen(const catalogue::Catalogue& opened, const std::string& shown) {
    const auto tracks = totalsOf(opened).tracks;
    std::string text = fmt::format("{}: version {}, {}", shown, catalogue::kSchemaVersion,
                                   output::counted(tracks, "track"));
    std::error_code failure;
    const auto bytes = static_cast<double>(fs::file_size(opened.filePath(), failure));
    // A large one would take minutes.
    if (!failure && bytes > kBytesOfGigabyte)
        text +=
            fmt::format("; not looked through, for it takes {:.1f} GB", bytes / kBytesOfGigabyte);
    else if (const std::string fault = opened.structuralFault(); !fault.empty())
        return {kCatalogue, Outcome::failed, shown + ": is damaged: " + base::displayName(fault)};
    if (!mayBeWritten(opened.filePath()))
        return {kCatalogue, Outcome::note, text + "; it may be read but not written to"};
    return {kCatalogue, Outcome::ok, text};
}

}  // namespace

std::vector<std::string> cataloguesInUse(const std::string& settings) {
    std::map<std::string, std::string> named;
    try {
        if (!settings.empty()) named = ConfigFile(settings).valuesOf(kCatalogue);
    } catch (const base::UsageError&) {
        // What is wrong with the settings is a check of its own.
    }
    try {
        // Commands for which no other is named take it.
        if (!named.contains("")) named[""] = CatalogueArgument().path();
    } catch (const base::UsageError&) {
        // Nothing says where the user's own files are.
    }
    std::set<std::string> each;
    for (const auto& [command, path] : named) each.insert(path);
    return {each.begin(), each.end()};
}

Check checkCatalogue(const std::string& path) {
    const std::string shown = base::displayName(path);
    if (isMissingOrEmpty(path))
        return {kCatalogue, Outcome::ok, shown + ": none yet, a scan makes it"};
    try {
        return checkOpen(catalogue::Catalogue(path, catalogue::Catalogue::Access::read), shown);
    } catch (const catalogue::CatalogueError& error) {
        return {kCatalogue, Outcome::failed, error.what()};
    }
}

}  // namespace app
