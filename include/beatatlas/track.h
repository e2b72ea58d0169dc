/* SPDX-License-Identifier: MIT */
/** @file
 *  Beat Atlas for whole tracks: pass in the decoded audio of a track and read everything the
 *  analysis found.
 *
 *  libbeatatlas_track builds on the sessions of libbeatatlas and does what a session leaves to the
 *  host: it makes the passes, scales and clips the samples, preserves the host's rounding mode,
 *  prints nothing to standard output, and can use more than one processor. It does not read files.
 *  C linkage; compiles as C99 and as C++. C++ hosts may prefer track.hpp, which wraps this
 *  interface in values and exceptions.
 *
 *  A whole analysis of audio in memory:
 *
 *      BA_Track* track;
 *      int status = BA_TrackAnalyzeArrays(NULL, 44100, left, right, frames, &track);
 *      if (status != BA_TRACK_OK) {
 *          fprintf(stderr, "%s\n", BA_TrackStatusText(status));
 *      } else {
 *          BA_TrackBeat* beats = malloc(sizeof *beats * BA_TrackBeats(track, NULL, 0));
 *          size_t count = BA_TrackBeats(track, beats, BA_TrackBeats(track, NULL, 0));
 *          printf("%.2f BPM, %lu beats\n", BA_TrackBpm(track), (unsigned long)count);
 *          free(beats);
 *          BA_TrackRelease(track);
 *      }
 *
 *  Order of calls
 *  ==============
 *  1. To change the defaults: BA_TrackOptionsInit, then set fields.
 *  2. BA_TrackAnalyze, which asks the host for the audio piece by piece, or BA_TrackAnalyzeArrays
 *     for audio in memory. Either does all the work before it returns. Besides the audio it needs
 *     about 30 MB, plus 30 KB for every second of the track with the auto tempo, 12 KB without.
 *  3. The getters, in any order and any number of times.
 *  4. BA_TrackRelease.
 *
 *  Audio
 *  =====
 *  Two channels of 32-bit floats, full scale ±1.0, at 44,100 or 48,000 frames per second. A frame
 *  is one sample per channel. Louder samples and infinities are clipped to full scale, NaN counts
 *  as 0. Pass a mono track as both channels. No result depends on the number of threads, on how
 *  many frames the source returns at a time, or on the rounding mode. The waves, the session's key,
 *  and tempo and beats in every mode but auto are bit for bit the results of a session of
 *  libbeatatlas that is fed the same samples multiplied by 32,768 and clipped to -32,768 … 32,767.
 *
 *  Threads
 *  =======
 *  An analysis runs in the calling thread and starts at most threads - 1 more, which have ended
 *  when it returns. If none can be started, the calling thread does their work. Signals are blocked
 *  in these threads, so that the host's handlers run in the host's own threads. Any number of
 *  analyses may run at once. A BA_Track never changes: any number of threads may read it at once.
 *  Release it once, when all of them are done.
 *
 *  What the host's callbacks may rely on is stated at BA_TrackOptions and BA_TrackSource. They must
 *  not throw: an exception from open, read or progress counts as a request to stop; one from close
 *  ends the process.
 *
 *  Arithmetic and output
 *  =====================
 *  Every call leaves the caller's rounding mode as it was, and the callbacks run in that mode, in
 *  every thread. Nothing is written to standard output. When memory is short, one line may appear
 *  on standard error. */
#ifndef BEATATLAS_TRACK_H
#define BEATATLAS_TRACK_H

#include "beatatlas/export.h"
#include "beatatlas/records.h"
#include "beatatlas/version.h"

#ifdef __cplusplus
extern "C" {
#endif

// C reads this as well: NOLINTBEGIN(modernize-use-using)

/** How an analysis ended. */
enum BA_TrackStatus {
    BA_TRACK_OK = 0,       /**< there is a result */
    BA_TRACK_BAD_ARGUMENT, /**< an argument, an option or a field of the source is out of range */
    BA_TRACK_NO_MEMORY,    /**< memory ran out */
    BA_TRACK_STOPPED,      /**< the source or the progress call asked to stop */
    BA_TRACK_WRONG_LENGTH  /**< the source had fewer or more frames than were stated */
};

/** How tempo and beats are found: a value of BA_TrackOptions.tempo. */
enum BA_TrackTempo {
    BA_TRACK_TEMPO_CONSTANT = 0, /**< one tempo for the whole track, fine-tuned at the end */
    BA_TRACK_TEMPO_VARIED,       /**< the tempo may change during the track */
    BA_TRACK_TEMPO_SIMPLE,       /**< sensed at the beginning only, one regular grid over it all */
    BA_TRACK_TEMPO_OFF,          /**< no tempo and no beats */

    /** Finds out whether the tempo is steady or varies. Weighs the answers of two sessions against
     *  the onsets and harmonies of the same audio, and reports how sure the answer is and what else
     *  the tempo might be. */
    BA_TRACK_TEMPO_AUTO
};

/** How another reading of the beats relates to the chosen one. */
enum BA_TrackReadingKind {
    BA_TRACK_READING_DOUBLE = 0,   /**< beats half as far apart */
    BA_TRACK_READING_HALF,         /**< beats twice as far apart */
    BA_TRACK_READING_SHIFTED,      /**< the same tempo, between the chosen beats */
    BA_TRACK_READING_THREE_TO_TWO, /**< one and a half times the tempo: three beats for two */
    BA_TRACK_READING_TWO_TO_THREE, /**< two thirds of the tempo: two beats for three */
    BA_TRACK_READING_OTHER         /**< any other tempo or position */
};

/** The waveform overviews; points are explained at the getters of beatatlas.h. */
enum BA_TrackWaveKind {
    BA_TRACK_WAVE_LOUD = 0, /**< 400 points; level in 16-bit scale, color 0 to 5 (BA_GetLoudWave) */
    BA_TRACK_WAVE_DOTS,     /**< 100 points; level of the bass, color 5 (BA_GetDotsWave) */
    BA_TRACK_WAVE_ZOOM /**< 150 points a second; level 0 to 31, color 0 to 7 (BA_GetZoomWave) */
};

/** What to find out, and how. BA_TrackOptionsInit fills in the defaults.
 *
 *  The field size lets hosts and libraries of different versions work together: fields that an
 *  older host does not know take their defaults; fields that an older library does not know must be
 *  0, or it refuses the options. */
typedef struct BA_TrackOptions {
    size_t size;   /**< sizeof(BA_TrackOptions) as the host was compiled */
    int32_t tempo; /**< BA_TRACK_TEMPO_…; default: auto */

    /** Varied tempo: the length in beats of the phrase over which the tempo is measured: 4, 8, 16,
     *  32, 64 …; any other number above 0 means 32. Default: 32. */
    int32_t section_beats;

    /** Simple tempo: how much of the beginning is sensed, in seconds from 0. A value at or beyond
     *  the length of the track means all of it. Default: 0, which means one minute. */
    double range_seconds;

    int32_t wants_key;   /**< not 0: find the key by evidence. Default: 1 */
    int32_t wants_waves; /**< not 0: make the three waves. Default: 1 */

    /** The most threads that may work at once, including the calling one; at least 1. More than 2
     *  bring nothing at present. Default: 1. */
    int32_t threads;
    int32_t reserved; /**< 0 */

    /** Called with the progress of the analysis: a fraction from 0 to 1 that never falls, grows
     *  about evenly in time, and is 1 at the last call, when all is done. May be called from any of
     *  the library's threads, never from two at once. Any result but 0 stops the analysis; the
     *  function is not called again after that. Default: null, no calls. */
    int (*progress)(void* host, double fraction);
    void* progress_host; /**< passed to progress. Default: null */

    /** Auto tempo: a range into which the tempo and its grid are brought by doubling or halving.
     *  Both in BPM, 20 to 1000, the upper end at least twice the lower one. Default: 0 and 0, no
     *  range. */
    double lowest_bpm;
    double highest_bpm;    /**< auto tempo: the upper end of that range. Default: 0 */
    int32_t beats_per_bar; /**< auto tempo: 3 or 4 if known. Default: 0, to be found */
    int32_t reserved_bar;  /**< 0 */

    /** Not 0: also find the key of a session of libbeatatlas, with its ranking and notes. This
     *  takes passes of its own and a quarter of the time; BA_TrackKey is right more often. Default:
     *  0. */
    int32_t wants_session_key;
    int32_t reserved_key; /**< 0 */
} BA_TrackOptions;

/** Where the audio of a track comes from. A pass returns the whole track from its first frame on;
 *  every pass must return the same frames. The library makes one to three passes.
 *
 *  It reads as many frames as were stated, then tries to read one more, which must return 0, and
 *  closes the pass. All calls for one pass come from one thread, one after the other. With threads
 *  at 1, only one pass is open at a time; with more, two passes may be opened, read and closed at
 *  the same time from two threads. Every pass that was opened is closed exactly once before the
 *  analysis returns. */
typedef struct BA_TrackSource {
    size_t size; /**< sizeof(BA_TrackSource) as the host was compiled; as in BA_TrackOptions */
    void* host;  /**< passed to the functions */

    /** Begins a pass. @return the host's handle of the pass, passed to the other two functions;
     *  null: stop the analysis */
    void* (*open)(void* host);

    /** Delivers the next frames of a pass.
     *  @param left    room for `frames` samples, all of which may be written; full scale ±1.0
     *  @param right   the same for the other channel
     *  @param frames  at least 1
     *  @return how many were written, at most `frames`; fewer do not mean the end. 0: the track is
     *          over. Below 0: stop the analysis. More than `frames` counts as a track of the wrong
     *          length */
    int64_t (*read)(void* host, void* pass, float* left, float* right, int64_t frames);

    /** Ends a pass, whether or not it was read to its end. */
    void (*close)(void* host, void* pass);

    /** Not 0: passes are costly or have to wait for a decoder. The library then makes as few as it
     *  can, never two at once: one for beats, waves, levels and the key by evidence, and a second
     *  one for the session's key. 0: the session's key is preceded by a pass for the levels, and
     *  with two threads it is found in a pass of its own beside the rest. Without the session's key
     *  there is a single pass in any case. */
    int32_t fewest_passes;
    int32_t reserved; /**< 0 */
} BA_TrackSource;

/** One beat of the grid. */
typedef struct BA_TrackBeat {
    double seconds;        /**< from the first frame of the track */
    double bpm;            /**< tempo at this beat, a multiple of 0.01 */
    int64_t frame;         /**< from the first frame of the track, at its rate */
    int32_t number_in_bar; /**< 1, the downbeat, to the number of beats in a bar */
    int32_t reserved;      /**< 0 */
} BA_TrackBeat;

/** How sure the answers of the auto tempo are. Each value is the share of tracks, 0 to 1, on which
 *  such an answer was right, measured on tracks of known beats. */
typedef struct BA_TrackConfidence {
    double tempo; /**< that the music has this pulse, or a multiple or fraction of it */
    double level; /**< that people tap at this multiple of it, if the pulse is right */
    double phase; /**< that they tap at these positions, if the level is right */
    /** That the bars begin at these beats, if the beats are right; 0 if there are too few beats to
     *  judge. */
    double bars;
} BA_TrackConfidence;

/** Another reading of the beats, compared with the answer before it was brought into a range. */
typedef struct BA_TrackReading {
    double bpm; /**< its tempo */
    /** Its probability, 0 to 1; those of the chosen reading and of all others add up to 1. */
    double share;
    /** How far its first beat lies after the beat of the answer before it, in beats of the answer,
     *  0 to 1. */
    double shift_beats;
    int32_t kind;     /**< BA_TRACK_READING_… */
    int32_t reserved; /**< 0 */
} BA_TrackReading;

/** A section of the track with nearly one tempo. */
typedef struct BA_TrackTempoStretch {
    double from_seconds; /**< its first beat */
    double to_seconds;   /**< the first beat of the next section, or the last beat of the track */
    double bpm;          /**< the mean, a multiple of 0.01 */
} BA_TrackTempoStretch;

/** A key and the evidence for it in a track. Keys are numbered as in BA_TrackKeyScore. */
typedef struct BA_TrackKeyCandidate {
    int32_t key;      /**< 0 to 23 */
    int32_t reserved; /**< 0 */
    double score;     /**< about −1 to 1.5; only the scores of one track can be compared */
    /** The score as a probability, 0 to 1; those of all 24 keys add up to 1. */
    double probability;
} BA_TrackKeyCandidate;

/** A section of the track in one key. */
typedef struct BA_TrackKeySegment {
    double from_seconds; /**< 0, or the end of the section before */
    double to_seconds;   /**< for the last section, the length of the track */
    double confidence;   /**< as BA_TrackKeyConfidence */
    int32_t key;         /**< 0 to 23 */
    int32_t reserved;    /**< 0 */
} BA_TrackKeySegment;

/** A key of a session and how well it fits. */
typedef struct BA_TrackKeyScore {
    /** 0 to 11: the major keys A, A♯, B, C … G♯; 12 to 23: the minor keys on the same tonics. */
    int32_t key;
    int32_t reserved; /**< 0 */
    double score;     /**< 0 and up; only the scores of one track can be compared */
} BA_TrackKeyScore;

/** How often a note occurs. */
typedef struct BA_TrackNote {
    int32_t count;    /**< how many of the 12 strongest semitone bands have this note */
    int32_t reserved; /**< 0 */
    double share;     /**< of those bands' energy, 0 to 1 */
} BA_TrackNote;

/** The results of one analysis. */
typedef struct BA_Track BA_Track;
// NOLINTEND(modernize-use-using)

/** What a status means, in one English sentence. Never null; do not free it.
 *  @param status  any number; for one that is no BA_TRACK_… value the sentence says so */
BA_API const char* BA_TrackStatusText(int status);

/** Fills in the default of every field.
 *  @param options  null: nothing is done
 *  @param size     sizeof(BA_TrackOptions), to which options->size is set; fields of the host that
 *                  this library does not know become 0. Too small for the field size itself:
 *                  nothing is done */
BA_API void BA_TrackOptionsInit(BA_TrackOptions* options, size_t size);

/** Analyses a track that the host delivers piece by piece.
 *
 *  @param options  null: all defaults. Only read, and only during the call
 *  @param rate     frames per second: 44100 or 48000
 *  @param frames   length of the track in frames, 1 to 2,147,483,647
 *  @param source   only read, and only during the call
 *  @param track    receives the result, to be freed by BA_TrackRelease; null after every outcome
 *                  other than BA_TRACK_OK
 *  @return BA_TRACK_OK.
 *          BA_TRACK_BAD_ARGUMENT: rate or frames out of range; track or source null; a function of
 *          the source null; an option or a field of the source out of range, or one that this
 *          library does not know and that is not 0. No function of the host was called.
 *          BA_TRACK_NO_MEMORY: memory ran out, in any thread. BA_TRACK_STOPPED: open returned null,
 *          read less than 0, progress anything but 0, or one of them threw. BA_TRACK_WRONG_LENGTH:
 *          a pass had fewer or more frames than were stated. If two threads fail at once, either
 *          reason may be returned. */
BA_API int BA_TrackAnalyze(const BA_TrackOptions* options, int32_t rate, int64_t frames,
                           const BA_TrackSource* source, BA_Track** track);

/** Analyses a track that lies in memory.
 *
 *  @param options  as for BA_TrackAnalyze
 *  @param rate     frames per second: 44100 or 48000
 *  @param left     `frames` samples, full scale ±1.0; only read
 *  @param right    the same of the other side
 *  @param frames   length of the track in frames, 1 to 2,147,483,647
 *  @param track    receives the result
 *  @return as for BA_TrackAnalyze; left or right null: BA_TRACK_BAD_ARGUMENT */
BA_API int BA_TrackAnalyzeArrays(const BA_TrackOptions* options, int32_t rate, const float* left,
                                 const float* right, int64_t frames, BA_Track** track);

/** Frees a result. Null: nothing. The handle must not be used again. */
BA_API void BA_TrackRelease(BA_Track* track);

/** @name Reading a result
 *
 *  A null handle is allowed and gives the empty answer stated at each function. Any other handle
 *  must come from an analysis and must not have been released.
 *
 *  A list is copied to an array of the caller: its first `room` elements, or all if there are
 *  fewer; a null array counts as no room. The result is the length of the whole list, however much
 *  was copied.
 *  @{ */

/** Frames per second, as passed in. 0 for null. */
BA_API int32_t BA_TrackRate(const BA_Track* track);

/** Length in frames, as passed in. 0 for null. */
BA_API int64_t BA_TrackFrames(const BA_Track* track);

/** Tempo in beats per minute, a multiple of 0.01. 0 if none was found, if it was not wanted, and
 *  for null. */
BA_API double BA_TrackBpm(const BA_Track* track);

/** The beats in order of time. None if none were found, if they were not wanted, and for null. */
BA_API size_t BA_TrackBeats(const BA_Track* track, BA_TrackBeat* out, size_t room);

/** Whether the tempo is steady. 1: one tempo, evenly spaced beats. 0: the tempo changes during the
 *  track, and the beats follow it. -1: not known, since the tempo option was not
 *  BA_TRACK_TEMPO_AUTO or no tempo was found; and for null. */
BA_API int32_t BA_TrackIsSteady(const BA_Track* track);

/** How sure tempo and beats are.
 *  @param track  a result
 *  @param out    filled in unless null; all 0 if nothing is known
 *  @return 1; 0 where BA_TrackIsSteady is -1 */
BA_API int32_t BA_TrackTempoConfidence(const BA_Track* track, BA_TrackConfidence* out);

/** The tempo in beats per minute before it was brought into the range of the options, a multiple of
 *  0.01; equal to BA_TrackBpm if there was no range. 0 in the same cases as BA_TrackBpm. */
BA_API double BA_TrackRawBpm(const BA_Track* track);

/** Other readings of the beats before they were brought into a range: at most five, the likeliest
 *  first. None where BA_TrackIsSteady is -1. */
BA_API size_t BA_TrackReadings(const BA_Track* track, BA_TrackReading* out, size_t room);

/** The sections of nearly one tempo, in order of time; a single one if the tempo is steady. None
 *  where BA_TrackIsSteady is -1. */
BA_API size_t BA_TrackTempoStretches(const BA_Track* track, BA_TrackTempoStretch* out, size_t room);

/** The points of a waveform overview. None if the waves were not wanted, for a kind that does not
 *  exist, and for null.
 *  @param track  a result
 *  @param wave   BA_TRACK_WAVE_…
 *  @param out    receives the points
 *  @param room   how many points there is room for */
BA_API size_t BA_TrackWave(const BA_Track* track, int wave, BA_WaveInfo* out, size_t room);

/** The likeliest key by evidence, numbered as in BA_TrackKeyScore. The spectrum, folded into pitch
 *  classes relative to the track's own tuning, is compared with the profile of each key, and so are
 *  the triads that sound. This key is right more often than that of a session, and its confidence
 *  is known. -1 if there is none: in silence and in tracks shorter than about three quarters of a
 *  second; if it was not wanted; and for null. Confidence, lists and tuning are then 0 or empty. */
BA_API int32_t BA_TrackKey(const BA_Track* track);

/** How sure that key is: the share of tracks of known key, 0 to 1, on which such an answer was
 *  right. It is small for a few seconds of music, since a few chords fit many keys. If it is below
 *  0.8, show the second candidate too, or no key. */
BA_API double BA_TrackKeyConfidence(const BA_Track* track);

/** All 24 keys by evidence, the likeliest first. */
BA_API size_t BA_TrackKeyRanking(const BA_Track* track, BA_TrackKeyCandidate* out, size_t room);

/** The keys along the track, in order of time and without gaps. Another key gets a section of its
 *  own if it clearly holds for at least 16 bars; its bounds are found to within 8 bars. Without
 *  beats, bars of four beats at 120 BPM are assumed. If no other key holds so long, there is one
 *  section with BA_TrackKey. */
BA_API size_t BA_TrackKeySegments(const BA_Track* track, BA_TrackKeySegment* out, size_t room);

/** How strongly each of the 12 notes sounds, from A upward; the values add up to 1. */
BA_API size_t BA_TrackChroma(const BA_Track* track, double* out, size_t room);

/** How far the tuning of the track lies above A4 = 440 Hz, in hundredths of a semitone, -50 to 50.
 *  0 for a track without a key. */
BA_API double BA_TrackTuningCents(const BA_Track* track);

/** The frequency of the track's A4 in Hz. 0 for a track without a key. */
BA_API double BA_TrackTuningHz(const BA_Track* track);

/** The key of a session of libbeatatlas, numbered as in BA_TrackKeyScore. -1 if there is none: in
 *  silence and in tracks shorter than a second, where all keys score 0; if it was not wanted; and
 *  for null. */
BA_API int32_t BA_TrackSessionKey(const BA_Track* track);

/** All 24 keys of that session, best first. None if BA_TrackSessionKey is -1. */
BA_API size_t BA_TrackSessionKeyRanking(const BA_Track* track, BA_TrackKeyScore* out, size_t room);

/** The 12 notes from A upward: A, A♯, B … G♯. None if BA_TrackSessionKey is -1. */
BA_API size_t BA_TrackNotes(const BA_Track* track, BA_TrackNote* out, size_t room);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
