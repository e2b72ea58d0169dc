// SPDX-License-Identifier: MIT
// The distance is that of optimal string alignment: Boytsov, "Indexing methods for approximate
// dictionary searching", ACM Journal of Experimental Algorithmics 16 (2011).
#include "cli/suggestion.h"

#include <algorithm>
#include <cctype>

namespace app {

namespace {

constexpr std::size_t kLettersPerSlip = 3;
constexpr std::size_t kShortestBeginning = 3;  // shorter ones fit too many names
constexpr std::size_t kLongestWord = 40;       // no misspelt name is longer

std::string inSmallLetters(const std::string& word) {
    std::string small = word;
    for (char& letter : small)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return small;
}

std::size_t slipsBetween(const std::string& one, const std::string& other) {
    const std::size_t width = other.size() + 1;
    std::vector<std::size_t> slips((one.size() + 1) * width);
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            std::size_t& least = slips[i * width + j];
            least = std::max(i, j);
            if (i == 0 || j == 0) continue;
            const std::size_t wrong = one[i - 1] == other[j - 1] ? 0 : 1;
            least = std::min({slips[(i - 1) * width + j] + 1, slips[i * width + j - 1] + 1,
                              slips[(i - 1) * width + j - 1] + wrong});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1])
                least = std::min(least, slips[(i - 2) * width + j - 2] + 1);
        }
    }
    return slips.back();
}

}  // namespace

std::string suggestion(const std::string& word, const std::vector<std::string>& names) {
    if (word.size() > kLongestWord) return {};
    const std::string small = inSmallLetters(word);
    const std::string* nearest = nullptr;
    std::size_t fewest = word.size() / kLettersPerSlip + 1;
    for (const std::string& name : names) {
        const bool isBeginning = small.size() >= kShortestBeginning && name.starts_with(small);
        const std::size_t slips = isBeginning ? 0 : slipsBetween(small, inSmallLetters(name));
        if (slips >= fewest) continue;
        fewest = slips;
        nearest = &name;
    }
    return nearest == nullptr ? "" : "; did you mean " + *nearest + "?";
}

}  // namespace app
