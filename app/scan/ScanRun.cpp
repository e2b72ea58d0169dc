// SPDX-License-Identifier: MIT
#include "scan/ScanRun.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/format.h>
#include <poll.h>

#include "base/Interrupt.h"
#include "output/textFormat.h"

namespace app {

namespace {

// A track takes a hundredth of its length; a machine may be slow, busy, and far from its disk.
constexpr double kLimitPerSecond = 1.0;

// Fewer make no music: of a file of unknown length, so many seconds are taken to be in it.
constexpr double kFewestBytesPerSecond = 4000.0;

constexpr int kMomentMs = 200;

// Whoever did not look for so long was stopped, with the workers: nobody is late by that time.
constexpr std::chrono::seconds kStandstill{5};

// What a decoder leaks goes with its process.
constexpr int kFilesPerWorker = 1000;

constexpr int kMostFailedStarts = 3;

}  // namespace

std::int64_t ScanRun::openFiles(int jobs) {
    // A pipe each way; beside them the catalogue, folders, and what a worker takes that begins.
    constexpr std::int64_t kPerWorker = 2;
    constexpr std::int64_t kOthers = 32;
    return kPerWorker * jobs + kOthers;
}

ScanRun::ScanRun(catalogue::Scan& scan, Options options, ScanProgress& progress)
    : scan_(scan), options_(std::move(options)), progress_(progress),
      seats_(static_cast<std::size_t>(options_.jobs)) {}

void ScanRun::run() {
    while (fillSeats()) {
        base::Interrupt::check();
        listen();
        forgetStandstill();
        stopLate();
        showProgress();
    }
}

/** @return whether anything is in work */
bool ScanRun::fillSeats() {
    bool isBusy = false;
    for (Seat& seat : seats_) {
        if (!seat.work) fill(seat);
        isBusy |= seat.work.has_value();
    }
    return isBusy;
}

void ScanRun::fill(Seat& seat) {
    seat.work = scan_.next();
    if (!seat.work) return replace(seat);
    if (seat.filesDone >= kFilesPerWorker) replace(seat);
    if (!seat.worker) seat.worker = std::make_unique<WorkerProcess>(options_.orders);
    if (seat.isReady) give(seat);
}

void ScanRun::give(Seat& seat) {
    seat.begun = Clock::now();
    seat.fraction = 0.0;
    seat.seconds = 0.0;
    seat.isGiven = true;
    seat.isReady = false;
    const bool mayBeKnown = seat.work->mayBeKnown && options_.knowsBySound;
    seat.worker->give(frameOf(WorkerTask{seat.work->path, mayBeKnown}));
}

/** What was found is committed before a wait: whenever the scan is ended from outside, only the
 *  files in work are lost. */
void ScanRun::listen() {
    std::vector<struct pollfd> descriptors;
    std::vector<Seat*> heard;
    for (Seat& seat : seats_) {
        if (!seat.work) continue;
        descriptors.push_back({seat.worker->descriptor(), POLLIN, 0});
        heard.push_back(&seat);
    }
    int ready = poll(descriptors.data(), descriptors.size(), 0);
    if (ready == 0) {
        scan_.commit();
        ready = poll(descriptors.data(), descriptors.size(), kMomentMs);
    }
    if (ready <= 0) return;
    for (std::size_t i = 0; i < heard.size(); ++i) {
        if (descriptors[i].revents != 0) hear(*heard[i]);
    }
}

void ScanRun::hear(Seat& seat) {
    const bool lives = seat.worker->receive();
    for (;;) {
        std::optional<WorkerAnswer> answer;
        try {
            answer = seat.worker->take();
        } catch (const std::exception&) {
            // Whatever a decoder did to its process, it does no more.
            return lose(seat, "gave no answer that can be read");
        }
        if (!answer) break;
        take(seat, *answer);
        if (!seat.worker) return;
    }
    if (!lives) lose(seat, seat.worker->end());
}

/** @param end  how the worker came to it */
void ScanRun::lose(Seat& seat, const std::string& end) {
    replace(seat);
    if (!seat.work) return;
    if (seat.isGiven)
        return fail(seat,
                    {catalogue::FailureKind::crashed, "cannot be analysed: its worker " + end});
    if (++seat.failedStarts >= kMostFailedStarts)
        throw std::runtime_error("no worker can be started: it " + end);
    seat.worker = std::make_unique<WorkerProcess>(options_.orders);
}

void ScanRun::take(Seat& seat, const WorkerAnswer& answer) {
    if (std::holds_alternative<WorkerReady>(answer)) return beReady(seat);
    if (!seat.isGiven) return;
    if (const auto* progress = std::get_if<WorkerProgress>(&answer)) {
        seat.fraction = progress->fraction;
        seat.seconds = progress->seconds;
    } else if (const auto* hashed = std::get_if<WorkerHash>(&answer)) {
        decide(seat, *hashed);
    } else if (const auto* analysed = std::get_if<catalogue::Analysed>(&answer)) {
        warnOfLeft(seat, scan_.put(*analysed));
        progress_.addAnalysed(seat.work->weight, analysed->track.seconds);
        endFile(seat);
    } else if (const auto* failure = std::get_if<catalogue::Failure>(&answer)) {
        fail(seat, *failure);
        // What is left of its memory is of unknown use.
        if (failure->kind == catalogue::FailureKind::memoryLimit) replace(seat);
    }
}

void ScanRun::beReady(Seat& seat) {
    seat.isReady = true;
    seat.failedStarts = 0;
    if (seat.work && !seat.isGiven) give(seat);
}

void ScanRun::decide(Seat& seat, const WorkerHash& hashed) {
    const auto adoption = scan_.adopt(seat.work->path, hashed.state, hashed.hash, hashed.format);
    warnOfLeft(seat, adoption.leavesCorrections);
    seat.worker->give(frameOf(WorkerVerdict{!adoption.isDone}));
    if (!adoption.isDone) return;
    progress_.addKnownSound(seat.work->weight, adoption.isMoved);
    endFile(seat);
}

void ScanRun::warnOfLeft(const Seat& seat, bool leavesCorrections) {
    if (leavesCorrections)
        progress_.tellWarning(seat.work->path,
                              "holds another sound than the one that was corrected; the "
                              "corrections are kept for that one");
}

void ScanRun::fail(Seat& seat, const catalogue::Failure& failure) {
    catalogue::Failure whole = failure;
    if (failure.kind == catalogue::FailureKind::memoryLimit)
        whole.limit = static_cast<double>(options_.orders.memoryLimit);
    scan_.putFailure(seat.work->path, seat.work->state, whole);
    progress_.addFailure(seat.work->path, seat.work->weight, failure);
    endFile(seat);
}

void ScanRun::endFile(Seat& seat) {
    seat.work.reset();
    seat.isGiven = false;
    ++seat.filesDone;
}

/** The next file gets a new worker. */
void ScanRun::replace(Seat& seat) {
    seat.worker.reset();
    seat.isReady = false;
    seat.filesDone = 0;
}

void ScanRun::forgetStandstill() {
    const auto now = Clock::now();
    const auto passed = now - std::exchange(lastLook_, now);
    if (passed < kStandstill) return;
    for (Seat& seat : seats_) seat.begun += passed;
}

void ScanRun::stopLate() {
    for (Seat& seat : seats_) {
        if (!seat.work || !seat.isGiven) continue;
        const double allowed = allowedSeconds(seat);
        if (Clock::now() - seat.begun < std::chrono::duration<double>(allowed)) continue;
        replace(seat);
        fail(seat, {catalogue::FailureKind::timeLimit,
                    "takes longer than " + output::clockTimeInSeconds(allowed) +
                        " to analyse (--time-limit)",
                    allowed});
    }
}

double ScanRun::allowedSeconds(const Seat& seat) const {
    if (options_.timeLimit) return *options_.timeLimit;
    const double guessed = static_cast<double>(seat.work->state.size) / kFewestBytesPerSecond;
    return kLeastSecondsAllowed + kLimitPerSecond * (seat.seconds > 0.0 ? seat.seconds : guessed);
}

void ScanRun::showProgress() {
    double weight = 0.0;
    double seconds = 0.0;
    for (const Seat& seat : seats_) {
        if (!seat.work || !seat.isGiven) continue;
        weight += seat.fraction * seat.work->weight;
        seconds += seat.fraction * seat.seconds;
    }
    progress_.show(weight, seconds);
}

}  // namespace app
