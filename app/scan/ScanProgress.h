// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "catalogue/Scan.h"
#include "io/ResultStream.h"
#include "scan/ScanTally.h"

namespace app {

/** Shows how far a scan is, to people as one line on a terminal that is written over again, or to
 *  programs as lines of JSON, and what became of it in the end. */
class ScanProgress {
public:
    using Clock = std::chrono::steady_clock;

    enum class Manner {
        watched,  ///< the line, where standard error is a terminal
        json,     ///< JSON on standard output
        none,     ///< nothing but messages
    };

    /** @param isQuiet  leaves out the closing line too */
    ScanProgress(Manner manner, bool isQuiet, ResultStream& results);
    ~ScanProgress();
    ScanProgress(const ScanProgress&) = delete;
    ScanProgress& operator=(const ScanProgress&) = delete;

    /** While files are looked for. */
    void showFound(std::int64_t files);

    /** Work begins. */
    void begin(const catalogue::Scan::Counts& counts);

    /** What is in work now. @param weight   done of the files that are not done yet
     *                        @param seconds  of music in that */
    void show(double weight, double seconds);

    /** @name A file that is done @{ */
    void addAnalysed(double weight, double audioSeconds);
    void addKnownSound(double weight, bool isMoved);
    void addFailure(const std::string& path, double weight, const catalogue::Failure& failure);
    /** @} */

    /** @name Messages between, each a line on standard error @{ */
    void tellError(const std::string& path, const std::string& text);
    void tellWarning(const std::string& path, const std::string& text);
    void tellNote(const std::string& path, const std::string& text);
    /** @} */

    void setGone(std::int64_t gone, std::int64_t pruned);
    void setNoFiles(std::int64_t count) { tally_.noFiles = count; }

    const ScanTally& tally() const { return tally_; }

    /** What became of the scan. */
    void tellEnd(bool isComplete);

private:
    bool isTime();
    void wipe();
    void showLine(const std::string& text);
    double fraction(double weightInWork) const;
    double elapsed() const;
    std::string lineOf(double weight, double seconds) const;

    Manner manner_;
    bool isQuiet_;
    ResultStream& results_;
    ScanTally tally_;
    std::int64_t toDo_ = 0;
    double weightToDo_ = 0.0;
    double weightDone_ = 0.0;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point nextShow_{};
    bool isShown_ = false;
};

}  // namespace app
