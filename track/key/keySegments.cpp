// SPDX-License-Identifier: MIT
#include "track/key/keySegments.h"

#include <algorithm>
#include <array>

namespace beatatlas::track::inner {

namespace {

constexpr std::size_t kBarsOfWindow = 8;
constexpr double kSecondsOfWindow = 16.0;  // eight bars of four beats at 120 BPM
constexpr double kLeastWindow = 1.0;
// A window scores about 1 more in its own key than in a key a semitone away, and 0.25 more than in
// a key a fifth away: a change pays off after one window or after two. The variation that the
// chords of one key cause in single windows stays below that.
constexpr double kChangePrice = 0.5;

/** The downbeats of every eighth bar. */
std::vector<double> phraseStarts(const std::vector<BA_TrackBeat>& beats, double seconds) {
    std::vector<double> starts;
    std::size_t bars = 0;
    for (const BA_TrackBeat& beat : beats) {
        if (beat.number_in_bar != 1 || bars++ % kBarsOfWindow != 0) continue;
        if (beat.seconds >= seconds) break;
        if (starts.empty() || beat.seconds - starts.back() >= kLeastWindow)
            starts.push_back(beat.seconds);
    }
    return starts;
}

/** How many whole windows fit into a section of a track; a window is at least kLeastWindow long. */
std::size_t windowsIn(double seconds, double window) {
    return seconds > 0.0 ? static_cast<std::size_t>(seconds / window) : 0;
}

/** The frames of a window. */
FrameRange framesBetween(const KeyFrames& frames, double from, double to) {
    const auto at = [&](double seconds) {
        return static_cast<std::size_t>(
            std::lower_bound(frames.seconds.begin(), frames.seconds.end(), seconds) -
            frames.seconds.begin());
    };
    return {at(from), at(to)};
}

/** The best scores of the paths through the windows so far, for each key they may end in. Begun:
 *  the key holds in the last window only. Settled: it holds in two or more, as it must before it
 *  may change again. */
struct Paths {
    KeyValues begun{};
    KeyValues settled{};
};

/** How the best paths reached a window, for tracing them back. */
struct Step {
    std::uint8_t before;                       // the best settled key of the window before
    std::array<bool, kKeys> hasJustSettled{};  // the window before was the key's first
};

class KeyPath {
public:
    void add(const KeyValues& scores) {
        if (steps_.empty())
            begin(scores);
        else
            step(scores);
    }

    /** The key of each window. */
    std::vector<std::size_t> keys() const {
        std::vector<std::size_t> keys(steps_.size());
        std::size_t key = bestKey(paths_.settled);
        bool isSettled = true;
        for (std::size_t i = steps_.size(); i-- > 0;) {
            keys[i] = key;
            if (isSettled)
                isSettled = !steps_[i].hasJustSettled[key];
            else {
                key = steps_[i].before;
                isSettled = true;
            }
        }
        return keys;
    }

private:
    static constexpr double kNever = -1e300;

    void begin(const KeyValues& scores) {
        paths_.begun = scores;
        paths_.settled.fill(kNever);
        steps_.push_back({});
    }

    void step(const KeyValues& scores) {
        Step next{};
        const std::size_t before = bestKey(paths_.settled);
        next.before = static_cast<std::uint8_t>(before);
        const double changed = paths_.settled[before] - kChangePrice;
        for (std::size_t key = 0; key < kKeys; ++key) {
            next.hasJustSettled[key] = paths_.begun[key] > paths_.settled[key];
            paths_.settled[key] = std::max(paths_.begun[key], paths_.settled[key]) + scores[key];
            paths_.begun[key] = changed + scores[key];
        }
        steps_.push_back(next);
    }

    Paths paths_;
    std::vector<Step> steps_;
};

/** The keys of the windows; all the same if no other key holds for two windows. */
std::vector<std::size_t> keysOfWindows(const KeyFrames& frames,
                                       const std::vector<double>& windows) {
    KeyPath path;
    for (std::size_t i = 0; i + 1 < windows.size(); ++i) {
        const FrameRange range = framesBetween(frames, windows[i], windows[i + 1]);
        path.add(range.first < range.end ? scoreStretch(frames, range) : KeyValues{});
    }
    return path.keys();
}

KeySegment segmentOf(const KeyFrames& frames, double from, double to, std::size_t key) {
    const FrameRange range = framesBetween(frames, from, to);
    const bool isHeard = range.first < range.end;
    return {from, to, key, isHeard ? keyProbabilities(scoreKeys(frames, range)) : KeyValues{}};
}

}  // namespace

std::vector<double> keyWindows(const std::vector<BA_TrackBeat>& beats, double seconds) {
    std::vector<double> ends = phraseStarts(beats, seconds);
    if (ends.size() < 2) ends = {0.0, kSecondsOfWindow};
    const double first = ends[1] - ends[0];
    const double last = ends.back() - ends[ends.size() - 2];
    // A beginning or ending without beats gets windows of its own.
    for (std::size_t left = windowsIn(seconds - ends.back(), last); left > 0; --left)
        ends.push_back(ends.back() + last);
    const std::size_t before = windowsIn(ends.front(), first);
    ends.insert(ends.begin(), before, ends.front());
    for (std::size_t i = before; i-- > 0;) ends[i] = ends[i + 1] - first;
    ends.front() = 0.0;
    ends.back() = seconds;
    return ends;
}

std::vector<KeySegment> findKeySegments(const KeyFrames& frames, const std::vector<double>& windows,
                                        const KeyValues& wholeScores) {
    const std::vector<std::size_t> keys = keysOfWindows(frames, windows);
    std::vector<KeySegment> segments;
    std::size_t from = 0;
    for (std::size_t i = 1; i <= keys.size(); ++i) {
        if (i < keys.size() && keys[i] == keys[from]) continue;
        segments.push_back(segmentOf(frames, windows[from], windows[i], keys[from]));
        from = i;
    }
    if (segments.size() == 1)
        segments = {
            {windows.front(), windows.back(), bestKey(wholeScores), keyProbabilities(wholeScores)}};
    return segments;
}

}  // namespace beatatlas::track::inner
