// SPDX-License-Identifier: MIT
#include "cli/ScanCommand.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <map>
#include <memory>
#include <thread>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/errors.h"
#include "base/fileLimit.h"
#include "catalogue/CatalogueError.h"
#include "cli/bracketGuard.h"
#include "cli/memorySize.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "cli/oneOf.h"
#include "cli/processors.h"
#include "cli/timeArgument.h"
#include "io/absolutePath.h"
#include "output/textFormat.h"

namespace app {

namespace {

constexpr int kMostJobs = 4096;
constexpr double kShortestLimitSeconds = 1.0;
constexpr double kLongestLimitSeconds = 1.0e6;
constexpr std::chrono::milliseconds kMoment{500};

// The shortest track takes more.
constexpr std::int64_t kLeastMemory = std::int64_t{16} << 20;

std::string requireMemoryLimit(const std::string& text) {
    const auto bytes = parseMemorySize(text);
    if (!bytes) return requireMemorySize(text);
    return *bytes >= kLeastMemory ? "" : "takes 16M or more, not " + text;
}

std::map<std::string, ScanProgress::Manner> progressManners() {
    return {{"line", ScanProgress::Manner::watched},
            {"json", ScanProgress::Manner::json},
            {"none", ScanProgress::Manner::none}};
}

/** Nothing unless the text is I/N with 1 <= I <= N. */
std::optional<Shard> shardOf(const std::string& text) {
    const std::size_t slash = text.find('/');
    Shard shard;
    if (slash == std::string::npos || text.find('-') != std::string::npos ||
        !CLI::detail::lexical_cast(text.substr(0, slash), shard.number) ||
        !CLI::detail::lexical_cast(text.substr(slash + 1), shard.count))
        return std::nullopt;
    const bool isOne = shard.number >= 1 && shard.number <= shard.count;
    return isOne ? std::optional(shard) : std::nullopt;
}

std::string requireShard(const std::string& text) {
    if (shardOf(text)) return {};
    return "takes a share such as 1/4, from 1/N to N/N, not " + text;
}

}  // namespace

ScanCommand::ScanCommand() : jobs_(processors()) {}

void ScanCommand::declare(CLI::App& arguments) {
    arguments
        .add_option("PATH", paths_,
                    "folders, tracks and playlists (M3U, M3U8, PLS); - reads names from standard\n"
                    "input, each on a line of its own or ended by NUL")
        ->required()
        ->option_text("...");
    catalogue_.declare(arguments);
    declareFiles(arguments);
    declareWork(arguments);
    declareOutcome(arguments);
    analysis_.declare(arguments);
    tracks_.declareCutOff(arguments);
    tracks_.declareMessages(arguments);
}

void ScanCommand::declareFiles(CLI::App& arguments) {
    arguments.add_flag("--hidden", walk_.takesHidden,
                       "files and folders whose names begin with a dot too");
    arguments.add_flag("--follow-links", walk_.followsLinks, "enter links to folders too");
    arguments.add_flag("-0,--null", readsNulNames_,
                       "names on standard input end in NUL, whatever they look like");
    arguments
        .add_option("--shard", shard_,
                    "only one of N equal shares of the files, drawn by their names: 1/N to N/N")
        ->check(CLI::Validator(requireShard, ""))
        ->option_text("I/N");
    arguments.add_flag("--retry-failed", retriesFailures_,
                       "try files again that failed, though they have not changed");
    arguments.add_flag("--rescan", rescansAll_,
                       "analyse files again that are in the catalogue and have not changed");
}

void ScanCommand::declareWork(CLI::App& arguments) {
    arguments
        .add_option("-j,--jobs", jobs_,
                    "how many tracks to analyse at once, each in a process of its own (default:\n"
                    "one for each processor)")
        ->check(wholeNumberBetween(1, kMostJobs))
        ->option_text("NUMBER");
    arguments
        .add_option("--time-limit", timeLimit_,
                    "how long a track may take (default: 2:00 and its own length)")
        ->transform(timeBetween(kShortestLimitSeconds, kLongestLimitSeconds))
        ->option_text("TIME");
    arguments
        .add_option_function<std::string>(
            "--memory-limit",
            [this](const std::string& text) { memoryLimit_ = *parseMemorySize(text); },
            "how much memory a track may take: 512M, 1.5G, 2GiB … (at least 16M; default: 2G)")
        ->check(CLI::Validator(requireMemoryLimit, ""))
        ->option_text("SIZE");
    arguments.add_flag("--wait", waits_,
                       "where another scan is filling the catalogue: wait for its end");
}

void ScanCommand::declareOutcome(CLI::App& arguments) {
    auto* prune = arguments.add_flag("--prune", prunes_,
                                     "delete tracks from the catalogue that are not in their place "
                                     "any more,\nunless somebody has corrected them, or nothing at "
                                     "all is left around them");
    arguments
        .add_flag("--prune-corrected", prunesCorrected_, "with --prune: those with corrections too")
        ->needs(prune);
    arguments
        .add_option("--progress", progress_,
                    "line: on a terminal (default)\n"
                    "json: on standard output, a JSON object on each line\n"
                    "none: nothing until the end")
        ->transform(oneOf(progressManners()))
        ->option_text("MANNER");
}

ExitCode ScanCommand::run(ResultStream& results) {
    analysis_.settle();
    std::transform(paths_.begin(), paths_.end(), paths_.begin(), unguarded);
    requireFileLimit();
    if (!mayFindAnything()) return kExitFailed;
    const std::string path = catalogue_.pathToCreate();
    catalogue::Catalogue catalogue(path, catalogue::Catalogue::Access::create);
    const auto scan = openScan(catalogue);
    // What workers say would go through the line.
    const bool isBetween = tracks_.isVerbose() && progress_ == ScanProgress::Manner::watched;
    ScanProgress progress(isBetween ? ScanProgress::Manner::none : progress_, tracks_.isQuiet(),
                          results);
    try {
        this->scan(*scan, path, progress);
    } catch (const base::Interrupted&) {
        scan->commit();
        progress.tellEnd(false);
        throw;
    }
    progress.tellEnd(true);
    return hasTrouble_ || progress.tally().failed > 0 ? kExitFailed : kExitDone;
}

/** @throws UsageError when the system allows fewer open files than so many workers take */
void ScanCommand::requireFileLimit() const {
    const std::int64_t allowed = base::raiseFileLimit();
    if (ScanRun::openFiles(jobs_) <= allowed) return;
    throw base::UsageError(fmt::format("--jobs {} takes {} open files, and {} are allowed here "
                                       "(ulimit -n)",
                                       jobs_, ScanRun::openFiles(jobs_), allowed));
}

/** A misspelt name makes no catalogue: where none is, one of the names has to be there. Otherwise
 *  prints why they cannot be read. */
bool ScanCommand::mayFindAnything() const {
    const auto isThere = [](const std::string& path) {
        return path == "-" || access(path.c_str(), F_OK) == 0;
    };
    if (isThere(catalogue_.path())) return true;
    std::vector<std::string> reasons;
    for (const std::string& path : paths_) {
        if (isThere(path)) return true;
        reasons.push_back(path.empty() ? base::kEmptyName
                                       : "cannot be opened: " + base::systemReason(errno));
    }
    for (std::size_t i = 0; i < paths_.size(); ++i) printFileError(paths_[i], reasons[i]);
    return false;
}

catalogue::Scan::Plan ScanCommand::plan() const {
    return {catalogue::parametersText(analysis_.options()), retriesFailures_, rescansAll_,
            static_cast<double>(memoryLimit_), timeLimit_.value_or(ScanRun::kLeastSecondsAllowed)};
}

std::unique_ptr<catalogue::Scan> ScanCommand::openScan(catalogue::Catalogue& catalogue) const {
    bool hasTold = false;
    for (;;) {
        try {
            return std::make_unique<catalogue::Scan>(catalogue, plan());
        } catch (const catalogue::ScanRunning& running) {
            if (!waits_) throw;
            if (!std::exchange(hasTold, true) && !tracks_.isQuiet())
                printError(std::string(running.what()) + ": waiting for its end");
        }
        base::Interrupt::check();
        std::this_thread::sleep_for(kMoment);
    }
}

void ScanCommand::scan(catalogue::Scan& scan, const std::string& catalogue,
                       ScanProgress& progress) {
    FileGathering files = gathering(scan, catalogue, progress);
    for (const std::string& path : paths_) files.add(path);
    progress.setNoFiles(files.noFiles());
    progress.begin(scan.settle());
    ScanRun(scan, work(), progress).run();
    finish(scan, files, progress);
}

FileGathering ScanCommand::gathering(catalogue::Scan& scan, const std::string& catalogue,
                                     ScanProgress& progress) {
    const Shard shard = shard_.empty() ? Shard{} : *shardOf(shard_);
    const auto found = [&](const std::string& path, const catalogue::FileState& state,
                           double weight) {
        scan.found(path, state, weight);
        progress.showFound(++found_);
    };
    const auto refused = [&](const std::string& path, const std::string& reason) {
        hasTrouble_ = true;
        progress.tellError(path, reason);
    };
    const auto noted = [&](const std::string& path, const std::string& text) {
        progress.tellNote(path, text);
    };
    return {{walk_, shard, absolutePath(catalogue), readsNulNames_, tracks_.isVerbose()},
            found,
            refused,
            noted};
}

ScanRun::Options ScanCommand::work() const {
    return {jobs_,
            {catalogue::parametersText(analysis_.options()), tracks_.acceptsCutOff(),
             tracks_.isVerbose(), memoryLimit_},
            timeLimit_,
            !rescansAll_};
}

void ScanCommand::finish(catalogue::Scan& scan, const FileGathering& files,
                         ScanProgress& progress) const {
    using Pruning = catalogue::Scan::Pruning;
    const Pruning whenPruned = prunesCorrected_ ? Pruning::all : Pruning::uncorrected;
    const auto ending = scan.finish(files.roots(), prunes_ ? whenPruned : Pruning::none);
    progress.setGone(ending.gone, ending.pruned);
    if (tracks_.isQuiet()) return;
    if (ending.keptCorrected > 0)
        printError("gone, but kept for the corrections: " +
                   output::counted(ending.keptCorrected, "track") +
                   " (--prune-corrected deletes such tracks)");
    if (ending.keptAbsent > 0)
        printError("gone, but kept, since nothing at all is left where they were, as where a disk "
                   "is not mounted: " +
                   output::counted(ending.keptAbsent, "track"));
}

}  // namespace app
