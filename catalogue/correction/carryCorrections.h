// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/Analysed.h"

namespace SQLite {
class Database;
}

namespace catalogue {

class TrackStore;

enum class Carrying {
    none,     ///< there is nothing to carry
    carried,  ///< the new sound has the corrections now
    left,     ///< they are kept with the sound that they were made for
};

/** Gives the corrections of the sound that a file held until now to the one that it holds, where
 *  they still mean the same: the file has the same size and time, and another decoder reads it, or
 *  it was encoded anew and isSameSound(). Corrections that the new sound has already stay alone.
 *  Called in a transaction, before the new sound is stored. @throws SQLite::Exception */
Carrying carryCorrections(SQLite::Database& database, TrackStore& store, const Analysed& next);

}  // namespace catalogue
