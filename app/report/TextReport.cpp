// SPDX-License-Identifier: MIT
#include "report/TextReport.h"

#include "report/textSummary.h"

namespace app {

void TextReport::add(const TrackReport& report) {
    if (!isFirst_) results_.write("\n");
    results_.write(textSummary(report));
    isFirst_ = false;
}

}  // namespace app
