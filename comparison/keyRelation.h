// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace comparison {

constexpr int kKeys = 24;

/** How a key lies to another, and what that counts in the evaluations of MIREX (audio key
 *  detection; a fifth counts where the first key lies above the second). */
struct KeyRelation {
    const char* name;  ///< "same", "fifth above", "fifth below", "relative", "parallel", "other"
    double score;      ///< 1, 0.5, 0, 0.3, 0.2, 0
};

/** @param key    both as the library numbers them, 0 to 23
 *  @param other  to which it is related */
KeyRelation keyRelation(int key, int other);

/** The number of a key by its name in English: "F# minor", "Gb:min", "C:major", "A"; nothing for
 *  any other text. Capitals do not count behind the note. */
std::optional<int> keyNamed(const std::string& name);

}  // namespace comparison
