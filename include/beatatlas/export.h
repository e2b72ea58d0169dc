/* SPDX-License-Identifier: MIT */
#ifndef BEATATLAS_EXPORT_H
#define BEATATLAS_EXPORT_H

/** Marks what the shared library shows to its host; everything else is hidden. */
#if defined(__GNUC__)
#define BA_API __attribute__((visibility("default")))
#else
#define BA_API
#endif

#endif
