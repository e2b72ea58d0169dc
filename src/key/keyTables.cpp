// SPDX-License-Identifier: MIT
#include "beatatlas/key_tables.h"

// "\x81\xF3" is the flat sign of Shift-JIS. The missing blanks of Em, Fm and Gm are as hosts know
// them: a comparison of whole names depends on them.
const char _key_table[24][5] = {
    "A  ",        "B\x81\xF3 ", "B  ", "C  ",        "D\x81\xF3 ", "D  ",
    "E\x81\xF3 ", "E  ",        "F  ", "G\x81\xF3 ", "G  ",        "A\x81\xF3 ",
    "Am ",        "B\x81\xF3m", "Bm ", "Cm ",        "D\x81\xF3m", "Dm ",
    "E\x81\xF3m", "Em",         "Fm",  "G\x81\xF3m", "Gm",         "A\x81\xF3m",
};

const char _key_table2[24][5] = {
    "A  ", "Bb ", "B  ", "C  ", "Db ", "D  ", "Eb ", "E  ", "F  ", "Gb ", "G  ", "Ab ",
    "Am ", "Bbm", "Bm ", "Cm ", "Dbm", "Dm ", "Ebm", "Em",  "Fm",  "Gbm", "Gm",  "Abm",
};

const char _chordname_table[16][6] = {
    "     ", "m    ", "m-5  ", "aug  ", "6    ", "m6   ", "M7   ", "m7   ",
    "m7-5 ", "mM7  ", "7    ", "aug7 ", "sus4 ", "7sus4", "add9 ", "dim7 ",
};

const int32_t _chord_name_list[16][4] = {
    {1, 5, 8},      // major
    {1, 4, 8},      // m
    {1, 4, 7},      // m-5
    {1, 5, 9},      // aug
    {1, 5, 8, 10},  // 6
    {1, 4, 8, 10},  // m6
    {1, 5, 8, 12},  // M7
    {1, 4, 8, 11},  // m7
    {1, 4, 7, 11},  // m7-5
    {1, 4, 8, 12},  // mM7
    {1, 5, 8, 11},  // 7
    {1, 5, 9, 11},  // aug7
    {1, 6, 8},      // sus4
    {1, 6, 8, 11},  // 7sus4
    {1, 3, 5, 8},   // add9
    {1, 4, 7, 10},  // dim7
};

const char _scalename_table[31][4] = {
    "ION", "DOR", "PHR", "LYD", "MXL", "AEO", "LOC", "MAB", "MIB", "DIM", "CDM",
    "MAP", "MIP", "RG1", "RG2", "RG3", "SPN", "GYP", "ARB", "EGY", "HWI", "PLG",
    "JPN", "RKY", "WHL", "MI3", "3RD", "4TH", "5TH", "OCT", "HMN",
};

const int32_t _scale_name_list[31][8] = {
    {1, 3, 5, 6, 8, 10, 12},     // ION
    {1, 3, 4, 6, 8, 10, 11},     // DOR
    {1, 2, 4, 6, 8, 9, 11},      // PHR
    {1, 3, 5, 7, 8, 10, 12},     // LYD
    {1, 3, 5, 6, 8, 10, 11},     // MXL
    {1, 3, 4, 6, 8, 9, 11},      // AEO
    {1, 2, 4, 6, 7, 9, 11},      // LOC
    {1, 4, 5, 8, 10, 11},        // MAB
    {1, 4, 6, 7, 8, 11},         // MIB
    {1, 3, 4, 6, 7, 9, 10, 12},  // DIM
    {1, 2, 4, 5, 7, 8, 10, 11},  // CDM
    {1, 3, 5, 8, 10},            // MAP
    {1, 4, 6, 8, 11},            // MIP
    {1, 2, 5, 6, 8, 9, 12},      // RG1
    {1, 2, 5, 7, 8, 10, 12},     // RG2
    {1, 2, 4, 7, 8, 9, 12},      // RG3
    {1, 2, 4, 5, 6, 8, 9, 11},   // SPN
    {1, 3, 4, 7, 8, 9, 12},      // GYP
    {1, 3, 5, 6, 7, 9, 11},      // ARB
    {1, 3, 6, 8, 11},            // EGY
    {1, 3, 4, 8, 10},            // HWI
    {1, 2, 4, 8, 9},             // PLG
    {1, 2, 6, 8, 9},             // JPN
    {1, 5, 6, 8, 12},            // RKY
    {1, 3, 5, 7, 9, 11},         // WHL
    {1, 4, 7, 10},               // MI3
    {1, 5, 9},                   // 3RD
    {1, 6, 11},                  // 4TH
    {1, 8},                      // 5TH
    {1},                         // OCT
    {1, 3, 4, 6, 8, 9, 12},      // HMN
};

const float _table_1st_maj[5][2][5] = {
    {{3.2F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 0, long
     {3.2F, 2.7F, 2.1F, 1.6F, 1.1F}},   // short
    {{3.2F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 1, long
     {3.2F, 2.7F, 2.1F, 1.6F, 1.1F}},   // short
    {{3.2F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 2, long
     {3.2F, 2.7F, 2.1F, 1.85F, 1.1F}},  // short
    {{3.2F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 3, long
     {3.2F, 2.7F, 2.1F, 1.85F, 1.1F}},  // short
    {{3.2F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 4, long
     {3.2F, 2.7F, 2.1F, 1.6F, 1.1F}},   // short
};

const float _table_1st_min[5][2][5] = {
    {{3.67F, 2.7F, 2.1F, 1.6F, 1.1F},     // mode 0, long
     {3.67F, 2.7F, 2.1F, 1.6F, 1.1F}},    // short
    {{3.781F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 1, long
     {3.67F, 2.7F, 2.1F, 1.6F, 1.1F}},    // short
    {{3.781F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 2, long
     {3.781F, 2.7F, 2.25F, 1.6F, 1.1F}},  // short
    {{3.781F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 3, long
     {3.781F, 2.7F, 2.25F, 1.6F, 1.1F}},  // short
    {{3.781F, 2.7F, 2.1F, 1.6F, 1.1F},    // mode 4, long
     {3.67F, 2.7F, 2.1F, 1.6F, 1.1F}},    // short
};

const float _table_3rd[5][2][7] = {
    {{2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F},          // mode 0, long
     {2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F}},         // short
    {{2.4F, 1.92F, 1.42F, 1.229F, 0.84F, 0.4F, 0.0F},     // mode 1, long
     {2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F}},         // short
    {{2.4F, 1.92F, 1.42F, 1.229F, 0.84F, 0.4F, 0.0F},     // mode 2, long
     {2.4F, 1.92F, 1.536F, 1.229F, 0.95F, 0.57F, 0.0F}},  // short
    {{2.4F, 1.92F, 1.42F, 1.229F, 0.84F, 0.4F, 0.0F},     // mode 3, long
     {2.4F, 1.92F, 1.536F, 1.229F, 0.95F, 0.57F, 0.0F}},  // short
    {{2.4F, 1.92F, 1.42F, 1.229F, 0.84F, 0.4F, 0.0F},     // mode 4, long
     {2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F}},         // short
};

const float _table_4th[5][2][7] = {
    {{0.2F, 0.17F, 0.13F, 0.1F, 0.07F, 0.03F, 0.0F},        // mode 0, long
     {0.2F, 0.17F, 0.13F, 0.1F, 0.07F, 0.03F, 0.0F}},       // short
    {{0.2F, 0.16F, 0.128F, 0.102F, 0.072F, 0.043F, 0.0F},   // mode 1, long
     {0.2F, 0.17F, 0.13F, 0.1F, 0.07F, 0.03F, 0.0F}},       // short
    {{0.2F, 0.16F, 0.128F, 0.102F, 0.072F, 0.043F, 0.0F},   // mode 2, long
     {0.2F, 0.16F, 0.128F, 0.102F, 0.072F, 0.043F, 0.0F}},  // short
    {{0.2F, 0.16F, 0.128F, 0.102F, 0.072F, 0.043F, 0.0F},   // mode 3, long
     {0.2F, 0.16F, 0.128F, 0.102F, 0.072F, 0.043F, 0.0F}},  // short
    {{0.2F, 0.16F, 0.128F, 0.102F, 0.072F, 0.043F, 0.0F},   // mode 4, long
     {0.2F, 0.17F, 0.13F, 0.1F, 0.07F, 0.03F, 0.0F}},       // short
};

const float _table_5th[5][2][7] = {
    {{2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F},         // mode 0, long
     {2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F}},        // short
    {{2.4F, 1.92F, 1.536F, 1.229F, 0.8F, 0.48F, 0.0F},   // mode 1, long
     {2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F}},        // short
    {{2.4F, 1.92F, 1.536F, 1.229F, 0.8F, 0.48F, 0.0F},   // mode 2, long
     {2.35F, 1.95F, 1.536F, 1.229F, 0.8F, 0.4F, 0.0F}},  // short
    {{2.4F, 1.92F, 1.536F, 1.229F, 0.8F, 0.48F, 0.0F},   // mode 3, long
     {2.35F, 1.95F, 1.536F, 1.229F, 0.8F, 0.4F, 0.0F}},  // short
    {{2.4F, 1.92F, 1.536F, 1.229F, 0.8F, 0.48F, 0.0F},   // mode 4, long
     {2.4F, 2.0F, 1.6F, 1.2F, 0.8F, 0.4F, 0.0F}},        // short
};
