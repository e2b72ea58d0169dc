// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

namespace catalogue {

/** A catalogue that cannot be opened, read or written. The text is one line that names its file. */
class CatalogueError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** What is stored of one track is damaged. The text names neither the catalogue nor the track:
 *  whoever asked for it knows which. */
class DamagedRecord : public CatalogueError {
public:
    using CatalogueError::CatalogueError;
};

/** Another scan is filling the same catalogue. */
class ScanRunning : public CatalogueError {
public:
    using CatalogueError::CatalogueError;
};

}  // namespace catalogue
