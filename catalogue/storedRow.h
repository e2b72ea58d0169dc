// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/TrackStore.h"

namespace SQLite {
class Statement;
}

namespace catalogue {

/** Selects everything of tracks t and their results r; a condition follows. */
extern const char* const kStoredRow;

/** A row of that. @throws DamagedRecord when it is not what TrackStore writes */
TrackStore::Dated readStoredRow(const SQLite::Statement& statement);

}  // namespace catalogue
