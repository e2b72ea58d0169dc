// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "output/ReportEntry.h"

namespace output {

/** Receives the text of a report in parts. May throw OutputError. */
using TextSink = std::function<void(std::string_view)>;

/** Writes what was found in several tracks, each as soon as it is known. Every call may throw
 *  OutputError. */
class ReportWriter {
public:
    virtual ~ReportWriter() = default;

    virtual void begin() {}
    virtual void add(const ReportEntry& entry) = 0;
    virtual void addFailure(const std::string& path, const std::string& reason) = 0;

    /** Also called when the work is interrupted, so that what has been written is a complete
     *  document. */
    virtual void end() {}
};

}  // namespace output
