// SPDX-License-Identifier: MIT
#include "peakss/grid/TempoWindow.h"

#include <algorithm>
#include <cstddef>

namespace peakss {

TempoWindow::TempoWindow(const BeatList& list, int slots, int digits) : list_(list) {
    table_.create(slots, digits);
    counts_.assign(static_cast<std::size_t>(table_.slots()), 0);
    slots_.reserve(list.size());
    for (const BeatInfo& beat : list)
        slots_.push_back(table_.intervalToSlot(static_cast<double>(beat.interval)));
}

void TempoWindow::moveTo(int first, int span) {
    const int size = static_cast<int>(list_.size());
    if (first < first_ || first > end_) restartAt(first);
    while (first_ < first) add(first_++, -1);
    // The window's first beat is counted whatever the span.
    while (end_ < size && (end_ == first || isWithin(end_, first, span))) add(end_++, 1);
    while (end_ > first + 1 && !isWithin(end_ - 1, first, span)) add(--end_, -1);
}

int TempoWindow::commonestSlot() const {
    return commonestSlot(0, table_.slots());
}

int TempoWindow::commonestSlot(int low, int high) const {
    int winner = -1;
    std::int32_t most = 0;
    for (int slot = std::max(low, 0); slot < std::min(high, table_.slots()); ++slot) {
        const std::int32_t hits = counts_[static_cast<std::size_t>(slot)];
        if (hits <= most) continue;
        most = hits;
        winner = slot;
    }
    return winner;
}

bool TempoWindow::isWithin(int index, int first, int span) const {
    const auto at = [this](int i) -> std::int64_t {
        return list_[static_cast<std::size_t>(i)].pos;
    };
    return at(index) - at(first) <= span;
}

void TempoWindow::add(int index, int hits) {
    const int slot = slotOf(index);
    if (slot < 0 || slot >= table_.slots()) return;
    counts_[static_cast<std::size_t>(slot)] += hits;
}

void TempoWindow::restartAt(int first) {
    std::fill(counts_.begin(), counts_.end(), 0);
    first_ = first;
    end_ = first;
}

}  // namespace peakss
