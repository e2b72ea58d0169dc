/* SPDX-License-Identifier: MIT */
/** @file
 *  The version of these headers. A change of the minor number may change interfaces as long as the
 *  major one is 0. */
#ifndef BEATATLAS_VERSION_H
#define BEATATLAS_VERSION_H

/** 1 of 1.2.3. */
#define BEATATLAS_VERSION_MAJOR 0
/** 2 of 1.2.3. */
#define BEATATLAS_VERSION_MINOR 1
/** 3 of 1.2.3. */
#define BEATATLAS_VERSION_PATCH 0

/** The number in the file names of the shared libraries. A program runs with every version that has
 *  the number it was linked with: a new version may add names, and a change that takes one away or
 *  alters its meaning gets the next number. */
#define BEATATLAS_INTERFACE 1

/** For comparisons: 1.2.3 is 10203. */
#define BEATATLAS_VERSION_NUMBER                                                                   \
    (BEATATLAS_VERSION_MAJOR * 10000 + BEATATLAS_VERSION_MINOR * 100 + BEATATLAS_VERSION_PATCH)

#define BEATATLAS_QUOTE_TOKEN(token) #token
#define BEATATLAS_QUOTE(macro) BEATATLAS_QUOTE_TOKEN(macro)

/** For people: "1.2.3". */
#define BEATATLAS_VERSION                                                                          \
    BEATATLAS_QUOTE(BEATATLAS_VERSION_MAJOR)                                                       \
    "." BEATATLAS_QUOTE(BEATATLAS_VERSION_MINOR) "." BEATATLAS_QUOTE(BEATATLAS_VERSION_PATCH)

#endif
