// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace peakss {

/** The latest entries of an endless sequence; a push into a full ring overwrites the oldest.
 *
 *  Life: create() → push() and back(); clear() empties it. */
template <typename Entry>
class RingStack {
public:
    /** An empty ring; a capacity below 0 counts as 0. */
    void create(int capacity) {
        clear();
        entries_.assign(static_cast<std::size_t>(std::max(capacity, 0)), Entry{});
    }

    void clear() { write_ = count_ = 0; }

    /** Ignored by a ring without capacity. */
    void push(const Entry& entry) {
        if (entries_.empty()) return;
        entries_[static_cast<std::size_t>(write_)] = entry;
        write_ = write_ + 1 == capacity() ? 0 : write_ + 1;
        count_ = std::min(count_ + 1, capacity());
    }

    /** The entry k before the newest, 0 ≤ k < count(). */
    const Entry& back(int k) const {
        const int slot = (write_ - 1 - k + capacity()) % capacity();
        return entries_[static_cast<std::size_t>(slot)];
    }

    /** Entries held. */
    int count() const { return count_; }
    int capacity() const { return static_cast<int>(entries_.size()); }

private:
    std::vector<Entry> entries_;
    int write_ = 0;  // next slot
    int count_ = 0;
};

}  // namespace peakss
