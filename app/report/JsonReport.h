// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include <nlohmann/json_fwd.hpp>

#include "io/ResultStream.h"
#include "report/ReportWriter.h"

namespace app {

/** One JSON document for all tracks, a line each, in the format of docs/json.md. Tracks are written as they come, so
 *  that a long list needs no memory. */
class JsonReport : public ReportWriter {
public:
    /** @param format  the document's name, "beatatlas.analysis" */
    JsonReport(ResultStream& results, std::string format)
        : results_(results), format_(std::move(format)) {}

    void begin() override;
    void add(const ReportEntry& entry) override;
    void addFailure(const std::string& path, const std::string& reason) override;
    void end() override;

private:
    void write(const nlohmann::ordered_json& entry);

    ResultStream& results_;
    std::string format_;
    bool isFirst_ = true;
};

}  // namespace app
