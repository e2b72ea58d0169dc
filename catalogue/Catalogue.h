// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

namespace SQLite {
class Database;
}

namespace catalogue {

/** An open catalogue: one SQLite file, as docs/catalogue.md describes it.
 *
 *  Any number of processes may read while one writes. What was committed survives the end of the
 *  process, however it comes. */
class Catalogue {
public:
    enum class Access {
        read,  ///< also from a place that may not be written to
        /** Also from a disk that is full. What is read may become wrong where the disk gets room
         *  and another program writes: for commands that come to an end. */
        readBriefly,
        write,   ///< an existing catalogue; one of an older version is brought up to date
        create,  ///< the same, made if there is none
    };

    /** Opens the file; folders on the way to it must exist.
     *  @throws CatalogueError for a catalogue of a newer version, for a file that is none or is
     *          damaged, which is left as it is, and for whatever the system refuses */
    Catalogue(const std::string& path, Access access);
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    const std::string& path() const { return path_; }

    /** The file itself where path() is a link to it: its log and the lock of a scan lie beside it,
     *  whichever of its names it is opened by. */
    std::string filePath() const;

    /** Whoever renames or deletes an open file parts it from its log, and nobody would find what is
     *  written into it from then on. @throws CatalogueError when that has happened */
    void requireInPlace() const;

    /** Looks through the whole file: a second and a half for a gigabyte that is in memory.
     *  @return what is wrong with its structure, in SQLite's words; empty where nothing is
     *  @throws CatalogueError where the file cannot even be read */
    std::string structuralFault() const;

    /** For the classes of this room. */
    SQLite::Database& database() const { return *database_; }

private:
    std::string path_;
    std::unique_ptr<SQLite::Database> database_;
};

/** Whether a path is that of the catalogue's file, or of one that SQLite or a scan keeps beside it.
 *  Both are compared as they stand. */
bool isFileOf(const std::string& catalogue, const std::string& path);

}  // namespace catalogue
