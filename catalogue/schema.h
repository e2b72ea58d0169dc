// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace SQLite {
class Database;
}

namespace catalogue {

/** The number by which the file is known for a catalogue: "BtAt". */
inline constexpr int kApplicationId = 0x42744174;

/** Version of the schema that this program writes. A version comes from the one before by one step;
 *  1 comes from an empty file. */
inline constexpr int kSchemaVersion = 3;

/** Takes the steps from the file's version to the given one in the caller's transaction. */
void takeSchemaSteps(SQLite::Database& database, int toVersion = kSchemaVersion);

/** PRAGMA user_version. */
int schemaVersionOf(SQLite::Database& database);

}  // namespace catalogue
