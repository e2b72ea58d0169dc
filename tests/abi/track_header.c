/* SPDX-License-Identifier: MIT */
/* The header of whole tracks as C99 sees it, alone and first, and the layout a C host relies on. */
#include "beatatlas/track.h"

#define BA_CHECK(name, condition) typedef char name[(condition) ? 1 : -1]
BA_CHECK(beat_size, sizeof(BA_TrackBeat) == 32);
BA_CHECK(beat_bpm_offset, offsetof(BA_TrackBeat, bpm) == 8);
BA_CHECK(beat_frame_offset, offsetof(BA_TrackBeat, frame) == 16);
BA_CHECK(beat_number_offset, offsetof(BA_TrackBeat, number_in_bar) == 24);
BA_CHECK(confidence_size, sizeof(BA_TrackConfidence) == 32);
BA_CHECK(reading_size, sizeof(BA_TrackReading) == 32);
BA_CHECK(stretch_size, sizeof(BA_TrackTempoStretch) == 24);
BA_CHECK(key_size, sizeof(BA_TrackKeyScore) == 16);
BA_CHECK(key_score_offset, offsetof(BA_TrackKeyScore, score) == 8);
BA_CHECK(candidate_size, sizeof(BA_TrackKeyCandidate) == 24);
BA_CHECK(segment_size, sizeof(BA_TrackKeySegment) == 32);
BA_CHECK(segment_key_offset, offsetof(BA_TrackKeySegment, key) == 24);
BA_CHECK(note_size, sizeof(BA_TrackNote) == 16);
BA_CHECK(note_share_offset, offsetof(BA_TrackNote, share) == 8);
BA_CHECK(options_size_first, offsetof(BA_TrackOptions, size) == 0);
BA_CHECK(source_size_first, offsetof(BA_TrackSource, size) == 0);
#if defined(__LP64__)
BA_CHECK(options_size, sizeof(BA_TrackOptions) == 88);
BA_CHECK(options_range_offset, offsetof(BA_TrackOptions, range_seconds) == 16);
BA_CHECK(options_progress_offset, offsetof(BA_TrackOptions, progress) == 40);
BA_CHECK(options_range_of_tempo_offset, offsetof(BA_TrackOptions, lowest_bpm) == 56);
BA_CHECK(source_size, sizeof(BA_TrackSource) == 48);
BA_CHECK(source_passes_offset, offsetof(BA_TrackSource, fewest_passes) == 40);
#endif

int beatatlas_track_header_check(const float* samples) {
    BA_TrackOptions options;
    BA_Track* track;
    BA_TrackOptionsInit(&options, sizeof options);
    return BA_TrackAnalyzeArrays(&options, 44100, samples, samples, 1, &track);
}
