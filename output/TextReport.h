// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "output/ReportWriter.h"

namespace output {

/** Summaries for people, separated by blank lines. Failures appear on standard error only. */
class TextReport : public ReportWriter {
public:
    explicit TextReport(TextSink write) : write_(std::move(write)) {}

    void add(const ReportEntry& entry) override;
    void addFailure(const std::string&, const std::string&) override {}

private:
    TextSink write_;
    bool isFirst_ = true;
};

}  // namespace output
