// SPDX-License-Identifier: MIT
#include "cli/ListCommand.h"

#include <map>
#include <string_view>

#include <CLI/CLI.hpp>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "cli/keyNotation.h"
#include "cli/oneOf.h"

namespace app {

namespace {

constexpr std::size_t kBufferBytes = 65536;

std::map<std::string, output::ListFormat> formats() {
    return {{"table", output::ListFormat::table},
            {"jsonl", output::ListFormat::jsonLines},
            {"csv", output::ListFormat::csv},
            {"m3u8", output::ListFormat::playlist}};
}

/** Gathers lines, so that a long list is not written line by line. */
class BufferedLines {
public:
    explicit BufferedLines(ResultStream& results) : results_(results) {}

    void write(std::string_view text) {
        buffer_ += text;
        if (buffer_.size() >= kBufferBytes) flush();
    }

    void flush() {
        results_.write(buffer_);
        buffer_.clear();
    }

private:
    ResultStream& results_;
    std::string buffer_;
};

}  // namespace

void ListCommand::declare(CLI::App& arguments) {
    filters_.declare(arguments, "TEXT");
    declareForm(arguments);
    catalogue_.declare(arguments);
}

void ListCommand::declareForm(CLI::App& arguments) {
    arguments.add_flag("--failed", isFailed_,
                       "instead: the files of music that could not be analysed, and why");
    arguments
        .add_option(
            "--format", format_,
            "table (default), jsonl: one JSON object a line, csv, or m3u8: a playlist; all but\n"
            "m3u8 name what is least sure, tempo or key, and how sure it is: 0 to 1")
        ->transform(oneOf(formats()))
        ->option_text("FORMAT");
    addKeyNotation(arguments, keyNotation_);
}

void ListCommand::settle() {
    if (isFailed_ && filters_.isNarrowing())
        throw base::UsageError("--failed goes with --reverse, --limit and --format alone");
    filters_.settle();
}

void ListCommand::listAll(const catalogue::Catalogue& catalogue, const catalogue::TrackQuery& query,
                          output::ListWriter& writer) const {
    const auto add = [&writer](const auto& entry) {
        base::Interrupt::check();
        writer.add(entry);
    };
    if (isFailed_) {
        writer.beginFailures();
        listFailures(catalogue, query.isReversed, query.limit, add);
    } else {
        writer.beginTracks();
        listTracks(catalogue, query, add);
    }
}

ExitCode ListCommand::run(ResultStream& results) {
    settle();
    const catalogue::Catalogue catalogue(catalogue_.path(),
                                         catalogue::Catalogue::Access::readBriefly);
    const catalogue::TrackQuery query = filters_.queryIn(catalogue);
    BufferedLines lines(results);
    const auto writer = makeListWriter(
        format_, [&lines](std::string_view text) { lines.write(text); }, keyNotation_);
    listAll(catalogue, query, *writer);
    lines.flush();
    return kExitDone;
}

}  // namespace app
