// SPDX-License-Identifier: MIT
#include "output/KeyName.h"

#include <array>
#include <cctype>

namespace output {

namespace {

constexpr int kNotes = 12;
constexpr int kFromAToC = 3;  // semitones; also from a minor key to its relative major
constexpr int kSemitonesOfFifth = 7;
constexpr int kCamelotHourOfC = 8;

constexpr std::array<const char*, 24> kNames = {
    "A major",  "Bb major", "B major",  "C major",  "Db major", "D major",  "Eb major", "E major",
    "F major",  "F# major", "G major",  "Ab major", "A minor",  "Bb minor", "B minor",  "C minor",
    "C# minor", "D minor",  "Eb minor", "E minor",  "F minor",  "F# minor", "G minor",  "G# minor"};

constexpr std::array<const char*, kNotes> kSharps = {"A",  "A#", "B", "C",  "C#", "D",
                                                     "D#", "E",  "F", "F#", "G",  "G#"};
constexpr std::array<const char*, kNotes> kFlats = {"A",  "Bb", "B", "C",  "Db", "D",
                                                    "Eb", "E",  "F", "Gb", "G",  "Ab"};

constexpr std::array<const char*, 24> kGerman = {
    "A-Dur",    "B-Dur",   "H-Dur",   "C-Dur",  "Des-Dur", "D-Dur",    "Es-Dur", "E-Dur",
    "F-Dur",    "Fis-Dur", "G-Dur",   "As-Dur", "a-Moll",  "b-Moll",   "h-Moll", "c-Moll",
    "cis-Moll", "d-Moll",  "es-Moll", "e-Moll", "f-Moll",  "fis-Moll", "g-Moll", "gis-Moll"};

/** Of the letters from A on. */
constexpr std::array<const char*, 7> kSyllables = {"La", "Si", "Do", "Re", "Mi", "Fa", "Sol"};

/** In lower case, with # and b for ♯ and ♭, without spaces. */
std::string plainName(std::string_view text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view sign = text.substr(i, 3);
        if (sign == "♯" || sign == "♭") {
            name += sign == "♯" ? '#' : 'b';
            i += 2;
        } else if (text[i] != ' ') {
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
        }
    }
    return name;
}

}  // namespace

std::optional<KeyName> KeyName::parse(std::string_view text) {
    const std::string name = plainName(text);
    const auto isName = [&name](std::string known) {
        known = plainName(known);
        if (name == known) return true;
        // "a minor" is "am" as well, "a major" "a".
        const std::size_t mode = known.find('m');
        if (mode == std::string::npos || std::isdigit(static_cast<unsigned char>(known[0])) != 0)
            return false;
        const bool isMinor = known.compare(mode, std::string::npos, "minor") == 0;
        const std::string note = known.substr(0, mode);
        return name == note + (isMinor ? "m" : "") || name == note + (isMinor ? "min" : "maj");
    };
    for (int number = 0; number < 2 * kNotes; ++number) {
        const KeyName key(number);
        if (isName(key.musical()) || isName(key.withSharps()) || isName(key.withFlats()) ||
            isName(key.camelot()) || isName(key.openKey()) || name == plainName(key.german()) ||
            name == plainName(key.solfege()))
            return key;
    }
    return std::nullopt;
}

std::string KeyName::musical() const {
    return kNames.at(static_cast<std::size_t>(number_));
}

std::size_t KeyName::tonic() const {
    return static_cast<std::size_t>(number_ % kNotes);
}

std::string KeyName::withSharps() const {
    return kSharps.at(tonic()) + mode();
}

std::string KeyName::withFlats() const {
    return kFlats.at(tonic()) + mode();
}

std::string KeyName::german() const {
    return kGerman.at(static_cast<std::size_t>(number_));
}

/** The letter alone changes; accidental and mode stay. */
std::string KeyName::solfege() const {
    const std::string name = musical();
    return kSyllables.at(static_cast<std::size_t>(name.front() - 'A')) + name.substr(1);
}

std::string KeyName::in(KeyNotation notation) const {
    switch (notation) {
    case KeyNotation::sharps:
        return withSharps();
    case KeyNotation::flats:
        return withFlats();
    case KeyNotation::camelot:
        return camelot();
    case KeyNotation::openKey:
        return openKey();
    case KeyNotation::german:
        return german();
    case KeyNotation::solfege:
        return solfege();
    case KeyNotation::standard:
        break;
    }
    return musical();
}

/** Steps along the circle of fifths from C major (or A minor), 0 to 11. Seven is its own inverse
 *  modulo twelve, so the same product that turns steps into semitones turns semitones into
 *  steps. */
int KeyName::fifthsFromC() const {
    const int tonic = number_ % kNotes;
    const int relativeMajor = isMinor() ? tonic + kFromAToC : tonic;
    const int semitonesAboveC = (relativeMajor - kFromAToC + kNotes) % kNotes;
    return (semitonesAboveC * kSemitonesOfFifth) % kNotes;
}

std::string KeyName::camelot() const {
    const int hour = (fifthsFromC() + kCamelotHourOfC - 1) % kNotes + 1;
    return std::to_string(hour) + (isMinor() ? "A" : "B");
}

std::string KeyName::openKey() const {
    return std::to_string(fifthsFromC() + 1) + (isMinor() ? "m" : "d");
}

}  // namespace output
