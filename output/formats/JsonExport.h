// SPDX-License-Identifier: MIT
#pragma once

#include "output/JsonReport.h"
#include "output/formats/ExportWriter.h"

namespace output {

/** The document of `analyze --json`. */
class JsonExport : public ExportWriter {
public:
    JsonExport(const ExportOptions& options, DocumentSink write);

    void begin() override { report_.begin(); }
    void add(const TrackReport& report, const Peaks* peaks) override;
    void addFailure(const std::string& path, const std::string& reason) override;
    void end() override { report_.end(); }

private:
    bool withWaves_;
    JsonReport report_;
};

/** The same tracks, each a document of its own on a line of its own. */
class JsonLinesExport : public ExportWriter {
public:
    JsonLinesExport(const ExportOptions& options, DocumentSink write);

    void add(const TrackReport& report, const Peaks* peaks) override;
    void addFailure(const std::string& path, const std::string& reason) override;

private:
    bool withWaves_;
    DocumentSink write_;
};

}  // namespace output
