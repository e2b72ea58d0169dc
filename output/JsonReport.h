// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include <nlohmann/json_fwd.hpp>

#include "output/ReportWriter.h"

namespace output {

/** One JSON document for all tracks, one line per track, in the format of docs/json.md. Each track
 *  is written as soon as it is analysed, so that a long list takes no memory. */
class JsonReport : public ReportWriter {
public:
    /** @param format       the document's name, "beatatlas.analysis"
     *  @param toolVersion  of the program that writes it */
    JsonReport(TextSink write, std::string format, std::string toolVersion)
        : write_(std::move(write)), format_(std::move(format)),
          toolVersion_(std::move(toolVersion)) {}

    void begin() override;
    void add(const ReportEntry& entry) override;
    void addFailure(const std::string& path, const std::string& reason) override;
    void end() override;

private:
    void put(const nlohmann::ordered_json& entry);

    TextSink write_;
    std::string format_;
    std::string toolVersion_;
    bool isFirst_ = true;
};

}  // namespace output
