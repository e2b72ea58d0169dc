// SPDX-License-Identifier: MIT
#include "output/TextReport.h"

namespace output {

void TextReport::add(const ReportEntry& entry) {
    if (!isFirst_) write_("\n");
    write_(entry.text());
    isFirst_ = false;
}

}  // namespace output
