// SPDX-License-Identifier: MIT
#pragma once

namespace peakss {

/** Whether an interval tells the tempo of a reference interval: it, its double or its half lies strictly within
 *  the tolerance of the reference. A detector that follows half or twice the pulse hears the same tempo.
 *
 *  Nothing matches a reference that is no tempo (0, negative, infinite, not a number), itself included. */
bool matchesTempo(float intervalMs, float referenceMs);

}  // namespace peakss
