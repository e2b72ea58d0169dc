// SPDX-License-Identifier: MIT
#include "report/TextReport.h"

namespace app {

void TextReport::add(const ReportEntry& entry) {
    if (!isFirst_) results_.write("\n");
    results_.write(entry.text());
    isFirst_ = false;
}

}  // namespace app
