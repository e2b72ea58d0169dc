// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace SQLite {
class Database;
}

namespace catalogue {

/** The row in which a scan says how far it is, for programs that look on. Every call but the adding
 *  ones throws SQLite::Exception; transactions are the caller's. */
class ScanRecord {
public:
    explicit ScanRecord(SQLite::Database& database) : database_(database) {}

    /** Takes the place of the scan before. */
    void begin(std::int64_t planned);

    /** @name A file that is done, whatever became of it @{ */
    void addDone(double audioSeconds);
    void addFailed();
    /** @} */

    /** Writes where it stands, if it runs. */
    void write();

    /** Nobody fills the catalogue any more. */
    void end();

    /** Between begin() and end(). */
    bool isRunning() const { return isRunning_; }

private:
    SQLite::Database& database_;
    bool isRunning_ = false;
    std::int64_t done_ = 0;
    std::int64_t failed_ = 0;
    double audioSeconds_ = 0.0;
};

}  // namespace catalogue
