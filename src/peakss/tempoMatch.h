// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

/** How far, in ms, an interval may lie from a reference and still be its tempo: 4 % of the reference, at most
 *  20 ms. Computed in double, stored as float. */
float tempoTolerance(float referenceMs);

/** Whether an interval tells the tempo of a reference interval: it, its double or its half lies strictly within
 *  the tolerance of the reference. A detector that follows half or twice the pulse hears the same tempo.
 *
 *  Nothing matches a reference that is no tempo (0, negative, infinite, not a number), itself included. */
bool matchesTempo(float intervalMs, float referenceMs);

}  // namespace peakss
