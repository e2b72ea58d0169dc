// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

// The two resolutions in which the analysis counts tempi, up to 400 BPM: whole BPM find the tempo, tenths tell it
// exactly.
inline constexpr int kCoarseSlots = 400;
inline constexpr int kCoarseDigits = 0;
inline constexpr int kFineSlots = 4000;
inline constexpr int kFineDigits = 1;
inline constexpr int kFineSlotsPerCoarseSlot = 10;

/** The beat interval in ms of a slot of the fine table; infinite for slot 0. */
inline float fineSlotInterval(int slot) {
    return static_cast<float>(60000.0 / (static_cast<double>(slot) / 10.0));
}

}  // namespace peakss
