// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "catalogue/Catalogue.h"

namespace catalogue {

/** A transaction that lasts until many records or a second or two have gone by, so that a scan of
 *  small files does not wait for the disk at each and a killed one loses little. What was not
 *  committed when this object ends is undone, unless commit() is called before. */
class WriteBatch {
public:
    /** @param beforeCommit  writes what belongs to every transaction */
    explicit WriteBatch(const Catalogue& catalogue, std::function<void()> beforeCommit = {})
        : catalogue_(catalogue), beforeCommit_(std::move(beforeCommit)) {}
    ~WriteBatch();
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    /** Before a record is written. */
    void begin();

    /** After a record was written: commits when it is time. */
    void recordWritten();

    /** @throws CatalogueError when the catalogue has been moved or deleted meanwhile */
    void commit();

private:
    const Catalogue& catalogue_;
    std::function<void()> beforeCommit_;
    int records_ = 0;
    std::chrono::steady_clock::time_point begin_;
};

}  // namespace catalogue
