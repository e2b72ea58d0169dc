// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include <SQLiteCpp/Exception.h>

#include "catalogue/CatalogueError.h"

namespace catalogue {

/** What went wrong with the catalogue of that path, as told to people. */
CatalogueError failureOf(const std::string& path, const SQLite::Exception& error);

/** Does what may fail in SQLite. @throws CatalogueError instead of SQLite's exceptions */
template <class Work>
decltype(auto) guarded(const std::string& path, Work&& work) {
    try {
        return std::forward<Work>(work)();
    } catch (const SQLite::Exception& error) {
        throw failureOf(path, error);
    }
}

}  // namespace catalogue
