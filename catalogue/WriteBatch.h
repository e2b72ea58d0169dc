// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include "catalogue/Catalogue.h"

namespace catalogue {

/** A transaction that lasts until many records or a second or two have gone by, so that a scan of
 *  small files does not wait for the disk at each and a killed one loses little. What was not
 *  committed when this object ends is undone, unless commit() is called before. */
class WriteBatch {
public:
    explicit WriteBatch(const Catalogue& catalogue) : catalogue_(catalogue) {}
    ~WriteBatch();
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    /** Before a record is written. */
    void begin();

    /** After a record was written: commits when it is time. */
    void recordWritten();

    void commit();

private:
    const Catalogue& catalogue_;
    int records_ = 0;
    std::chrono::steady_clock::time_point begin_;
};

}  // namespace catalogue
