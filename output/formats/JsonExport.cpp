// SPDX-License-Identifier: MIT
#include "output/formats/JsonExport.h"

#include <utility>

#include <nlohmann/json.hpp>

#include "output/TrackEntry.h"
#include "output/jsonParts.h"
#include "output/trackJson.h"

namespace output {

JsonExport::JsonExport(const ExportOptions& options, DocumentSink write)
    : withWaves_(options.withWaves),
      report_(std::move(write), kAnalysisDocument, options.toolVersion) {}

void JsonExport::add(const TrackReport& report, const Peaks*) {
    report_.add(TrackEntry(report, withWaves_));
}

void JsonExport::addFailure(const std::string& path, const std::string& reason) {
    report_.addFailure(path, reason);
}

JsonLinesExport::JsonLinesExport(const ExportOptions& options, DocumentSink write)
    : withWaves_(options.withWaves), write_(std::move(write)) {}

void JsonLinesExport::add(const TrackReport& report, const Peaks*) {
    write_(trackJson(report, withWaves_).dump() + "\n");
}

void JsonLinesExport::addFailure(const std::string& path, const std::string& reason) {
    write_(failureJson(path, reason).dump() + "\n");
}

}  // namespace output
