// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace output {

/** How a key may be named. */
enum class KeyNotation {
    /** As musicians write it, in the spelling with the fewer accidentals. */
    standard,
    /** No flats. */
    sharps,
    /** No sharps. */
    flats,
    camelot,
    openKey,
    german,   ///< a-Moll, B-Dur; H is the note above B
    solfege,  ///< La minor, Sib major
};

/** The names of a key, numbered as by the library: 0 to 11 are A major, A sharp major … G sharp
 *  major, 12 to 23 the minor keys on the same notes. */
class KeyName {
public:
    explicit KeyName(int number) : number_(number) {}

    /** The key of a name in any notation: "8A", "1m", "F# minor", "Gbm", "c", "B♭ major". Nothing
     *  for any other text. */
    static std::optional<KeyName> parse(std::string_view text);

    int number() const { return number_; }
    bool isMinor() const { return number_ >= 12; }

    /** As musicians write it, in the spelling with the fewer accidentals: "A minor", "Bb major",
     *  "F# minor". */
    std::string musical() const;

    /** The same with sharps alone, "A# major", and with flats alone, "Gb minor". */
    std::string withSharps() const;
    std::string withFlats() const;

    /** On the Camelot wheel: "8A" is A minor, "8B" C major; a fifth up is one hour on. */
    std::string camelot() const;

    /** In Open Key notation: "1m" is A minor, "1d" C major. */
    std::string openKey() const;

    /** In German: capital letters for major, "a-Moll", "B-Dur" (Bb major), "H-Dur" (B major). */
    std::string german() const;

    /** By the syllables of fixed Do: "La minor", "Sib major", "Fa# minor". */
    std::string solfege() const;

    std::string in(KeyNotation notation) const;

private:
    int fifthsFromC() const;
    std::string mode() const { return isMinor() ? " minor" : " major"; }
    std::size_t tonic() const;

    int number_;
};

}  // namespace output
