// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <new>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "base/TrackSource.h"
#include "base/errors.h"
#include "io/ProgressLine.h"
#include "media/FileAnalysis.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments of every command that reads tracks, and what is printed for each track: progress,
 *  warnings, the reason why it failed. */
class TrackArguments {
public:
    void declare(CLI::App& arguments);

    /** @name The two halves of declare(): how tracks are read, and what is printed of that
     *  @{ */
    void declareReading(CLI::App& arguments);
    /** Of reading only what a command takes that reads names by standard input. */
    void declareCutOff(CLI::App& arguments);
    void declareMessages(CLI::App& arguments);
    /** @} */

    /** Before the first track. @param paths  of all the tracks, in their order
     *  @throws UsageError when they ask for standard input twice, or name its format and not
     *          itself */
    void settle(const std::vector<std::string>& paths);

    bool acceptsCutOff() const { return acceptsCutOff_; }
    bool isQuiet() const { return isQuiet_; }
    bool isVerbose() const { return isVerbose_; }

    /** How to read one track; the caller adds what to find in it. */
    media::FileAnalysis::Options reading(const std::string& path,
                                         const media::Effort& effort) const;

    /** Works on the next track, with progress and warnings on standard error.
     *  @param work  takes a ProgressLine and returns a TrackSource
     *  @return nothing when the track failed; the reason, also printed on standard error, is in
     *           failure() */
    template <class Work>
    auto attempt(const std::string& path, Work work)
        -> std::optional<std::invoke_result_t<Work, ProgressLine&>> {
        try {
            progress_->beginTrack(path);
            auto result = work(*progress_);
            progress_->endTrack(true);
            warnOf(result);
            return result;
        } catch (const base::TrackError& error) {
            fail(path, error.what());
        } catch (const std::bad_alloc&) {
            fail(path, "there is not enough memory");
        }
        return std::nullopt;
    }

    const std::string& failure() const { return failure_; }

    /** After the last track, or when the command was interrupted: prints how many are done. */
    void tellOutcome() { progress_->tellOutcome(); }

private:
    static void warnOf(const base::TrackSource& file);
    void fail(const std::string& path, const std::string& reason);

    bool acceptsCutOff_ = false;
    bool isQuiet_ = false;
    bool isVerbose_ = false;
    std::optional<std::string> rawFormat_;
    std::string failure_;
    std::optional<ProgressLine> progress_;
};

}  // namespace app
