// SPDX-License-Identifier: MIT
#pragma once

#include "io/ResultStream.h"
#include "report/ReportWriter.h"

namespace app {

/** Summaries for people, a blank line between them. Failures are left to standard error. */
class TextReport : public ReportWriter {
public:
    explicit TextReport(ResultStream& results) : results_(results) {}

    void add(const ReportEntry& entry) override;
    void addFailure(const std::string&, const std::string&) override {}

private:
    ResultStream& results_;
    bool isFirst_ = true;
};

}  // namespace app
