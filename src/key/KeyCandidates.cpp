// SPDX-License-Identifier: MIT
// The key of twelve note strengths. The tonic is among the five strongest notes, and its third,
// fourth and fifth are strong too; how much each rank is worth stands in the exported weight
// tables.
//   1. rank the notes
//   2. score ten candidates
//   3. take the best candidate
//   4. of short tracks settle major against minor of one tonic by third, sixth and seventh
#include "key/KeyCandidates.h"

#include <array>
#include <cstddef>
#include <numeric>

#include "beatatlas/dsp.h"
#include "beatatlas/key_tables.h"

namespace beatatlas {

namespace {

constexpr int kTonics = 5;
constexpr int kCandidates = 2 * kTonics;
constexpr int kScoredRanks = 7;

// Semitones above the tonic.
constexpr int kMinorThird = 3;
constexpr int kMajorThird = 4;
constexpr int kFourth = 5;
constexpr int kFifth = 7;
constexpr int kMinorSixth = 8;
constexpr int kMajorSixth = 9;
constexpr int kMinorSeventh = 10;
constexpr int kMajorSeventh = 11;

/** How far the major third may stand behind before the minor key wins outright. */
constexpr int kMajorThirdHandicap = 2;

/** The pitch classes from the strongest to the weakest. */
class NoteRanking {
public:
    explicit NoteRanking(PitchClassStrengths strengths) {
        std::iota(notes_.begin(), notes_.end(), 0);
        QSort3(strengths.data(), notes_.data(), 0, kPitchClasses - 1);
        for (int rank = 0; rank < kPitchClasses; ++rank) positions_[index(noteAt(rank))] = rank;
    }

    int noteAt(int rank) const { return notes_[static_cast<std::size_t>(rank)]; }

    /** The rank of the note so many semitones above another. */
    int rankOf(int tonic, int semitones) const { return positions_[index(tonic + semitones)]; }

private:
    static std::size_t index(int note) { return static_cast<std::size_t>(note % kPitchClasses); }

    std::array<int, kPitchClasses> notes_{};
    std::array<int, kPitchClasses> positions_{};
};

/** One row of the weight tables: a mode and a length class. */
struct Weights {
    const float* majorTonic;
    const float* minorTonic;
    const float* third;
    const float* fourth;
    const float* fifth;
};

Weights weightsOf(int mode, LengthClass lengthClass) {
    const int m = mode >= 0 && mode <= 4 ? mode : 0;
    const int c = static_cast<int>(lengthClass);
    return {_table_1st_maj[m][c], _table_1st_min[m][c], _table_3rd[m][c], _table_4th[m][c],
            _table_5th[m][c]};
}

/** The tonic's own weight, then third, fourth and fifth in the order of their ranks: single
 *  precision keeps the order. */
float scoreOf(const NoteRanking& ranking, const Weights& weights, int tonicRank, bool isMajor) {
    const int tonic = ranking.noteAt(tonicRank);
    const int third = ranking.rankOf(tonic, isMajor ? kMajorThird : kMinorThird);
    const int fourth = ranking.rankOf(tonic, kFourth);
    const int fifth = ranking.rankOf(tonic, kFifth);
    float score = (isMajor ? weights.majorTonic : weights.minorTonic)[tonicRank];
    for (int q = 0; q < kScoredRanks; ++q) {
        if (q == third) score += weights.third[q];
        if (q == fourth) score += weights.fourth[q];
        if (q == fifth) score += weights.fifth[q];
    }
    return score;
}

/** Candidate 2r is the major key of the note of rank r, candidate 2r + 1 its minor key; best
 *  first. */
std::array<int, kCandidates> rankCandidates(const NoteRanking& ranking, const Weights& weights) {
    std::array<float, kCandidates> scores{};
    std::array<int, kCandidates> candidates{};
    std::iota(candidates.begin(), candidates.end(), 0);
    for (int candidate : candidates)
        scores[static_cast<std::size_t>(candidate)] =
            scoreOf(ranking, weights, candidate / 2, candidate % 2 == 0);
    QSort3(scores.data(), candidates.data(), 0, kCandidates - 1);
    return candidates;
}

/** The notes in which the two scales of one tonic differ, by rank: the lower sum sounds more. Ties
 *  are minor. */
bool soundsMajor(const NoteRanking& ranking, int tonic) {
    const int majorThird = ranking.rankOf(tonic, kMajorThird) + kMajorThirdHandicap;
    const int minorThird = ranking.rankOf(tonic, kMinorThird);
    if (majorThird >= minorThird) return false;
    const int major =
        majorThird + ranking.rankOf(tonic, kMajorSixth) + ranking.rankOf(tonic, kMajorSeventh);
    const int minor =
        ranking.rankOf(tonic, kMinorSixth) + minorThird + ranking.rankOf(tonic, kMinorSeventh);
    return major < minor;
}

}  // namespace

int keyOfStrengths(const PitchClassStrengths& strengths, int mode, LengthClass lengthClass) {
    const NoteRanking ranking(strengths);
    const auto candidates = rankCandidates(ranking, weightsOf(mode, lengthClass));
    const int best = candidates[0];
    const int tonic = ranking.noteAt(best / 2);
    bool isMajor = best % 2 == 0;
    const bool isParallelPair = candidates[1] / 2 == best / 2;
    if (lengthClass == LengthClass::isShort && isParallelPair)
        isMajor = soundsMajor(ranking, tonic);
    return isMajor ? tonic : tonic + kPitchClasses;
}

}  // namespace beatatlas
