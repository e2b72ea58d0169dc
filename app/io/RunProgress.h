// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace app {

/** How far a command is with all of its tracks. Each counts as the bytes of its file, which are
 *  known before any is read; one that failed counts as far as it was read. */
class RunProgress {
public:
    explicit RunProgress(const std::vector<std::string>& paths);

    /** Begins the next track. */
    void begin();

    /** @param fraction      of the work on that track; clamped to 0 to 1
     *  @param trackSeconds  its length; 0 while unknown */
    void show(double fraction, double trackSeconds);

    void end(bool isDone);

    std::size_t tracks() const { return weights_.size(); }
    std::size_t number() const { return begun_; }  // of the current track, from 1

    /** Of all the work, 0 to 1. */
    double fraction() const;

    /** The speed as a multiple of real time; nothing while no length is known. */
    std::optional<double> speed(double elapsedSeconds) const;

    /** Nothing at the beginning, when it would be a guess. */
    std::optional<double> secondsLeft(double elapsedSeconds) const;

    /** "12 of 300"; empty for a single track. */
    std::string count() const;

    /** "297 tracks done, 2 failed, 1 left out": what happened to all of them. */
    std::string outcome() const;

private:
    std::vector<double> weights_;
    double all_ = 0.0;
    double before_ = 0.0;         // done of the tracks before
    double secondsBefore_ = 0.0;  // of music in them
    double current_ = 0.0;        // fraction of the current track
    double trackSeconds_ = 0.0;
    std::size_t begun_ = 0;
    std::size_t done_ = 0;
    std::size_t failed_ = 0;
};

}  // namespace app
