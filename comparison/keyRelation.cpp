// SPDX-License-Identifier: MIT
#include "comparison/keyRelation.h"

#include <array>
#include <cctype>

namespace comparison {

namespace {

constexpr int kNotes = 12;
constexpr int kFifth = 7;
constexpr int kFromMinorToRelative = 3;

// From A upward, by the letters A to G.
constexpr std::array<int, 7> kNoteOfLetter = {0, 2, 3, 5, 7, 8, 10};

bool isMinor(int key) {
    return key >= kNotes;
}

/** Semitones from one note up to another, 0 to 11. */
int distance(int from, int to) {
    return ((to - from) % kNotes + kNotes) % kNotes;
}

/** @return how far the sign raises the note; nothing when it is none */
std::optional<int> raiseOf(char sign) {
    if (sign == '#') return 1;
    return sign == 'b' ? std::optional(-1) : std::nullopt;
}

std::optional<bool> minorNamed(const std::string& mode) {
    if (mode.empty() || mode == "maj" || mode == "major") return false;
    if (mode == "m" || mode == "min" || mode == "minor") return true;
    return std::nullopt;
}

}  // namespace

KeyRelation keyRelation(int key, int other) {
    if (key == other) return {"same", 1.0};
    const int up = distance(other, key);
    if (isMinor(key) == isMinor(other)) {
        if (up == kFifth) return {"fifth above", 0.5};
        return {up == kNotes - kFifth ? "fifth below" : "other", 0.0};
    }
    const int minorToMajor = isMinor(key) ? distance(key, other) : distance(other, key);
    if (minorToMajor == kFromMinorToRelative) return {"relative", 0.3};
    return up == 0 ? KeyRelation{"parallel", 0.2} : KeyRelation{"other", 0.0};
}

std::optional<int> keyNamed(const std::string& name) {
    const int letter = name.empty() ? 0 : std::toupper(static_cast<unsigned char>(name[0]));
    if (letter < 'A' || letter > 'G') return std::nullopt;
    int note = kNoteOfLetter.at(static_cast<std::size_t>(letter - 'A'));
    std::size_t at = 1;
    for (; at < name.size() && at < 3; ++at) {
        const auto raise = raiseOf(name[at]);
        if (!raise) break;
        note += *raise;
    }
    while (at < name.size() && (name[at] == ' ' || name[at] == ':')) ++at;
    std::string mode = name.substr(at);
    for (char& part : mode)
        part = static_cast<char>(std::tolower(static_cast<unsigned char>(part)));
    const auto minor = minorNamed(mode);
    if (!minor) return std::nullopt;
    return distance(0, note) + (*minor ? kNotes : 0);
}

}  // namespace comparison
