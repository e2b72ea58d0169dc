// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "catalogue/Scan.h"
#include "scan/ScanProgress.h"
#include "scan/WorkerProcess.h"

namespace app {

/** The work of a scan: hands files to worker processes and what they find to the catalogue.
 *
 *  It alone decides how long a file may take and writes what became of it; a worker that ends, by
 *  itself or because its time is up, is replaced, and the file it had is a failure. */
class ScanRun {
public:
    /** What every file may take where nothing was said. */
    static constexpr double kLeastSecondsAllowed = 120.0;

    /** How many open files so many workers take in this process. */
    static std::int64_t openFiles(int jobs);

    struct Options {
        int jobs = 1;
        WorkerOrders orders;
        /** Seconds for every file; nothing: in proportion to its length. */
        std::optional<double> timeLimit;
        /** Whether a track that is known by its sound is not to be analysed again. */
        bool knowsBySound = true;
    };

    ScanRun(catalogue::Scan& scan, Options options, ScanProgress& progress);

    /** Until every file is done. @throws Interrupted, CatalogueError; std::runtime_error when no
     *  worker can be started */
    void run();

private:
    using Clock = std::chrono::steady_clock;

    /** A place for a worker, and the file that it is at. */
    struct Seat {
        std::unique_ptr<WorkerProcess> worker;
        bool isReady = false;
        std::optional<catalogue::Scan::Work> work;
        bool isGiven = false;
        Clock::time_point begun;
        double fraction = 0.0;
        double seconds = 0.0;  ///< length of the track; 0 while it is not known
        int filesDone = 0;
        int failedStarts = 0;
    };

    bool fillSeats();
    void fill(Seat& seat);
    void give(Seat& seat);
    void listen();
    void hear(Seat& seat);
    void lose(Seat& seat, const std::string& end);
    void beReady(Seat& seat);
    void take(Seat& seat, const WorkerAnswer& answer);
    void decide(Seat& seat, const WorkerHash& hashed);
    void warnOfLeft(const Seat& seat, bool leavesCorrections);
    void fail(Seat& seat, const catalogue::Failure& failure);
    void endFile(Seat& seat);
    void replace(Seat& seat);
    void stopLate();
    void forgetStandstill();
    double allowedSeconds(const Seat& seat) const;
    void showProgress();

    catalogue::Scan& scan_;
    Options options_;
    ScanProgress& progress_;
    std::vector<Seat> seats_;
    Clock::time_point lastLook_ = Clock::now();
};

}  // namespace app
