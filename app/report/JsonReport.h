// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "io/ResultStream.h"
#include "report/ReportWriter.h"

namespace app {

/** One JSON document for all tracks, a line each, in the format of docs/json.md. Tracks are written as they come, so
 *  that a long list needs no memory. */
class JsonReport : public ReportWriter {
public:
    JsonReport(ResultStream& results, bool withWaves) : results_(results), withWaves_(withWaves) {}

    void begin() override;
    void add(const TrackReport& report) override;
    void addFailure(const std::string& path, const std::string& reason) override;
    void end() override;

private:
    void addEntry(const nlohmann::ordered_json& entry);

    ResultStream& results_;
    bool withWaves_;
    bool isFirst_ = true;
};

}  // namespace app
