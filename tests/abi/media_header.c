/* SPDX-License-Identifier: MIT */
/* The header of files as C99 sees it, alone and first, and the layout a host relies on. */
#include "beatatlas/media.h"

#define BA_CHECK(name, condition) typedef char name[(condition) ? 1 : -1]
BA_CHECK(gap_size, sizeof(BA_FileGap) == 16);
BA_CHECK(options_size_first, offsetof(BA_FileOptions, size) == 0);
#if defined(__LP64__)
BA_CHECK(options_size, sizeof(BA_FileOptions) == 24);
BA_CHECK(options_cut_off_offset, offsetof(BA_FileOptions, accepts_cut_off) == 16);
BA_CHECK(facts_size, sizeof(BA_FileFacts) == 120);
BA_CHECK(facts_packets_offset, offsetof(BA_FileFacts, damaged_packets) == 32);
BA_CHECK(facts_channels_offset, offsetof(BA_FileFacts, channels) == 56);
BA_CHECK(facts_samples_offset, offsetof(BA_FileFacts, samples) == 80);
BA_CHECK(facts_peak_offset, offsetof(BA_FileFacts, clipped_peak) == 96);
BA_CHECK(facts_too_loud_offset, offsetof(BA_FileFacts, is_too_loud) == 112);
#endif

int beatatlas_media_header_check(const char* path) {
    BA_FileOptions options;
    BA_File* file;
    BA_FileOptionsInit(&options, sizeof options);
    return BA_FileAnalyze(path, NULL, &options, &file);
}
