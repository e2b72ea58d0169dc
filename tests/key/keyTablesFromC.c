/* SPDX-License-Identifier: MIT */
#include "beatatlas/key_tables.h"

const char* keyNameSeenFromC(int key);

const char* keyNameSeenFromC(int key) {
    return _key_table[key];
}
