/* SPDX-License-Identifier: MIT */
/** @file
 *  The names of keys, chords and scales, and the weights by which the key of a buffer is scored.
 *
 *  Read-only data; compiles as C99 and as C++. Note numbers count semitones from the root, the root
 *  being 1 (5 is the major third, 8 the fifth); 0 marks an unused place. */
#ifndef BEATATLAS_KEY_TABLES_H
#define BEATATLAS_KEY_TABLES_H

#include <stdint.h>  // NOLINT(modernize-deprecated-headers): C reads it too

#include "beatatlas/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Names of the 24 keys in the order of key numbers: 0 to 11 major from A upward, 12 to 23 minor
 *  from A minor.
 *
 *  Text in Shift-JIS, the flat sign being its two bytes 81 F3; padded with blanks to three
 *  characters, except "Em", "Fm" and "Gm", which are padded with zeros; zero-terminated. */
extern BA_API const char _key_table[24][5];

/** The same names with the letter b for the flat sign: plain ASCII. */
extern BA_API const char _key_table2[24][5];

/** Suffixes of 16 chords, padded with blanks to five characters: "     " is the major triad, "m
 *  " the minor. */
extern BA_API const char _chordname_table[16][6];

/** Up to four notes of each chord, in the order of _chordname_table. */
extern BA_API const int32_t _chord_name_list[16][4];

/** Three-letter codes of 31 scales: "ION" is the major scale, "AEO" the natural minor. */
extern BA_API const char _scalename_table[31][4];

/** Up to eight notes of each scale, in the order of _scalename_table. */
extern BA_API const int32_t _scale_name_list[31][8];

/** @name Weights
 *  Indexed by mode (0 to 4), length class (0: 30 s and longer, 1: shorter) and rank position, 0
 *  being the strongest of the twelve pitch classes.
 *  @{ */
extern BA_API const float _table_1st_maj[5][2][5]; /**< tonic of a major key */
extern BA_API const float _table_1st_min[5][2][5]; /**< tonic of a minor key */
extern BA_API const float _table_3rd[5][2][7];     /**< the key's own third, major or minor */
extern BA_API const float _table_4th[5][2][7];     /**< fourth */
extern BA_API const float _table_5th[5][2][7];     /**< fifth */
/** @} */

#ifdef __cplusplus
}
#endif

#endif
