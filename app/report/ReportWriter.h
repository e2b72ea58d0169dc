// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "report/ReportEntry.h"

namespace app {

/** Writes what was found in several tracks, each as soon as it is known. Every call may throw OutputError. */
class ReportWriter {
public:
    virtual ~ReportWriter() = default;

    virtual void begin() {}
    virtual void add(const ReportEntry& entry) = 0;
    virtual void addFailure(const std::string& path, const std::string& reason) = 0;

    /** Also called when the work is broken off: what was written until then is complete in itself. */
    virtual void end() {}
};

}  // namespace app
