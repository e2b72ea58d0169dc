// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace app {

/** How far a command is with all of its tracks. Each counts as the bytes of its file, which are
 *  known before any is read; one that failed counts for as much as was done of it. */
class RunProgress {
public:
    explicit RunProgress(const std::vector<std::string>& paths);

    /** Takes up the next track. */
    void begin();

    /** @param fraction      of the work on that track, 0 to 1; values outside are taken to the
     *                       nearer end
     *  @param trackSeconds  its length; 0 while that is not known */
    void show(double fraction, double trackSeconds);

    void end(bool isDone);

    std::size_t tracks() const { return weights_.size(); }
    std::size_t number() const { return begun_; }  ///< of the track at hand, from 1

    /** Of all the work, 0 to 1. */
    double fraction() const;

    /** How many times faster than the music it goes; nothing while no length is known. */
    std::optional<double> speed(double elapsedSeconds) const;

    /** Nothing before it can be told: too early, it would be a guess. */
    std::optional<double> secondsLeft(double elapsedSeconds) const;

    /** "12 of 300"; empty for a single track. */
    std::string count() const;

    /** "297 tracks done, 2 failed, 1 left out": what happened to all of them. */
    std::string outcome() const;

private:
    std::vector<double> weights_;
    double all_ = 0.0;
    double before_ = 0.0;         ///< done of the tracks before
    double secondsBefore_ = 0.0;  ///< of music in them
    double current_ = 0.0;        ///< fraction of the track at hand
    double trackSeconds_ = 0.0;
    std::size_t begun_ = 0;
    std::size_t done_ = 0;
    std::size_t failed_ = 0;
};

}  // namespace app
