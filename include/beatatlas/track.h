/* SPDX-License-Identifier: MIT */
/** @file
 *  Beat Atlas for whole tracks: hand over the decoded audio of a track and read everything that is
 *  known about it.
 *
 *  libbeatatlas_track builds on the sessions of libbeatatlas and does for the host what they leave
 *  to it: it makes the passes, scales and clips the samples, keeps the host's rounding mode, prints
 *  nothing to standard output, and can use more than one processor. It knows nothing of files. C
 *  linkage; compiles as C99 and as C++. C++ hosts may prefer track.hpp, which wraps this interface
 *  in values and exceptions.
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
 *  --------------
 *  1. Where the defaults will not do: BA_TrackOptionsInit, then change fields.
 *  2. BA_TrackAnalyze, which asks the host for the audio piece by piece, or BA_TrackAnalyzeArrays
 *     for audio in memory. Either does all the work before it returns. Beside the audio it takes
 *     some 30 MB and for every second of track 30 KB with the auto tempo, 12 KB without.
 *  3. The getters, in any order and any number of times.
 *  4. BA_TrackRelease.
 *
 *  Audio
 *  -----
 *  Two channels of 32-bit floats, full scale ±1.0, at 44,100 or 48,000 frames per second. A frame
 *  is one sample per channel. Louder samples and infinities are clipped to full scale, NaN counts
 *  as 0. A mono track is given as both channels. No result depends on the number of threads, on how
 *  the source hands out its frames, or on the rounding mode. Waves, the session's key, and tempo
 *  and beats in every mode but auto are, bit for bit, those of a session of libbeatatlas that is
 *  fed the same samples times 32,768, clipped to -32,768 … 32,767.
 *
 *  Threads
 *  -------
 *  An analysis runs in the calling thread and starts at most threads - 1 more, which have ended
 *  when it returns; where none can be started, the calling thread does their work. Signals are
 *  blocked in these threads, so that the host's handlers run in its own. Any number of analyses may
 *  run at once. A BA_Track never changes: any threads may read it at once, and one of them releases
 *  it when all are done.
 *
 *  What the host's callbacks may rely on is described at BA_TrackOptions and BA_TrackSource. They
 *  must not throw: open, read and progress are taken for asking to stop when they do, close ends
 *  the process.
 *
 *  Arithmetic and output
 *  ---------------------
 *  Every call leaves the caller's rounding mode as it was, and the callbacks run in it, in
 *  whichever thread. Nothing is written to standard output; a shortage of memory may put a line on
 *  standard error. */
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
    BA_TRACK_WRONG_LENGTH  /**< the source had fewer or more frames than stated */
};

/** How tempo and beats are found: a value of BA_TrackOptions.tempo. */
enum BA_TrackTempo {
    BA_TRACK_TEMPO_CONSTANT = 0, /**< one tempo for the whole track, fine-tuned at the end */
    BA_TRACK_TEMPO_VARIED,       /**< the tempo may change along the track */
    BA_TRACK_TEMPO_SIMPLE,       /**< sensed at the beginning only, one regular grid over it all */
    BA_TRACK_TEMPO_OFF,          /**< no tempo and no beats */

    /** Steady or varying, as it turns out: two sessions, and what begins and sounds in the same
     *  audio, are weighed against each other. Tells how sure it is, and what else the tempo might
     *  be. */
    BA_TRACK_TEMPO_AUTO
};

/** What another reading of the beats makes of those that were chosen. */
enum BA_TrackReadingKind {
    BA_TRACK_READING_DOUBLE = 0,   /**< beats half as far apart */
    BA_TRACK_READING_HALF,         /**< beats twice as far apart */
    BA_TRACK_READING_SHIFTED,      /**< the same tempo, between the beats that were chosen */
    BA_TRACK_READING_THREE_TO_TWO, /**< one and a half times the tempo: three beats for two */
    BA_TRACK_READING_TWO_TO_THREE, /**< two thirds of the tempo: two beats for three */
    BA_TRACK_READING_OTHER         /**< any other tempo or place */
};

/** The waveform overviews; points are explained at the getters of beatatlas.h. */
enum BA_TrackWaveKind {
    BA_TRACK_WAVE_LOUD = 0, /**< 400 points; level in 16-bit scale, color 0 to 5 (BA_GetLoudWave) */
    BA_TRACK_WAVE_DOTS,     /**< 100 points; level of the bass, color 5 (BA_GetDotsWave) */
    BA_TRACK_WAVE_ZOOM /**< 150 points a second; level 0 to 31, color 0 to 7 (BA_GetZoomWave) */
};

/** What is to be found out, and how. BA_TrackOptionsInit fills in the defaults.
 *
 *  A host and a library of different versions understand each other by the field size: fields that
 *  an older host does not know have their defaults; fields that an older library does not know must
 *  be 0, or it refuses the options. */
typedef struct BA_TrackOptions {
    size_t size;   /**< sizeof(BA_TrackOptions) as the host was compiled */
    int32_t tempo; /**< BA_TRACK_TEMPO_…; default: auto */

    /** Varied tempo: the length in beats of the phrase over which the tempo is measured: 4, 8, 16,
     *  32, 64 …; any other number above 0 means 32. Default: 32. */
    int32_t section_beats;

    /** Simple tempo: how much of the beginning is sensed, 0 and up; at or beyond the length of the
     *  track: all of it. Default: 0, which is one minute. */
    double range_seconds;

    int32_t wants_key;   /**< not 0: find the key by evidence. Default: 1 */
    int32_t wants_waves; /**< not 0: make the three waves. Default: 1 */

    /** The most threads that may work at once, the calling one among them, from 1. More than 2 are
     *  of no use today. Default: 1. */
    int32_t threads;
    int32_t reserved; /**< 0 */

    /** Called with how far the analysis has come: a fraction that never falls, grows about evenly
     *  in time, and is 1 at the last call, which comes when all is done. May be called from any of
     *  the library's threads, never by two at once. Any result but 0 stops the analysis, after
     *  which it is not called again. Default: null, not called. */
    int (*progress)(void* host, double fraction);
    void* progress_host; /**< handed to progress. Default: null */

    /** Auto tempo: a range into which the tempo is brought by doubling or halving, with its grid.
     *  From 20 to 1000 BPM, the upper end at least twice the lower one. Default: 0 and 0, no
     *  range. */
    double lowest_bpm;
    double highest_bpm;
    int32_t beats_per_bar; /**< auto tempo: 3 or 4, where it is known. Default: 0, found out */
    int32_t reserved_bar;  /**< 0 */

    /** Not 0: find the key of a session of libbeatatlas too, with its ranking and notes. It takes
     *  passes of its own and a quarter of the time; BA_TrackKey is right more often. Default: 0. */
    int32_t wants_session_key;
    int32_t reserved_key; /**< 0 */
} BA_TrackOptions;

/** Where the audio of a track comes from. A pass hands out the whole track from its first frame on;
 *  every pass must hand out the same frames. The library makes one to three of them.
 *
 *  It reads as many frames as were stated, then tries to read one more, which must give 0, and
 *  closes the pass. All calls for one pass come from one thread, one after the other. With threads
 *  at 1 no two passes are open at once; with more, two may be opened, read and closed at once from
 *  two threads. Every pass that was opened is closed, exactly once, before the analysis returns. */
typedef struct BA_TrackSource {
    size_t size; /**< sizeof(BA_TrackSource) as the host was compiled; as in BA_TrackOptions */
    void* host;  /**< handed to the functions */

    /** Begins a pass. @return what names the pass to the other two functions; null: stop the
     *  analysis */
    void* (*open)(void* host);

    /** Hands out the next frames of a pass.
     *  @param left,right  room for this many frames, all of which may be written to; full scale
     *                     ±1.0
     *  @param frames      from 1
     *  @return how many were handed out, at most `frames`; fewer do not mean the end. 0: the track
     *          is over. Below 0: stop the analysis. More than `frames` counts as a track of the
     *          wrong length */
    int64_t (*read)(void* host, void* pass, float* left, float* right, int64_t frames);

    /** Ends a pass, wherever it has come to. */
    void (*close)(void* host, void* pass);

    /** Not 0: passes are costly or have to wait for a decoder. The library then takes as few as it
     *  can, never two at once: one for beats, waves, levels and the key by evidence, and a second
     *  one for the session's key. 0: with the session's key, a pass for the levels goes before, and
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
    int32_t number_in_bar; /**< from 1, the downbeat, to the beats of a bar */
    int32_t reserved;      /**< 0 */
} BA_TrackBeat;

/** How sure the answers of the auto tempo are: each is the share of tracks on which such an answer
 *  was right, 0 to 1, as measured on tracks of known beats. */
typedef struct BA_TrackConfidence {
    double tempo; /**< that the music has this pulse, or one of its multiples or parts */
    double level; /**< that people tap this multiple of it, where the pulse is right */
    double phase; /**< that they tap at these places, where the level is right */
    /** That the bars begin at these beats, where the beats are right; 0 where there are too few
     *  beats to judge. */
    double bars;
} BA_TrackConfidence;

/** Another reading of the beats. The answer that it is compared with is the one before it was
 *  brought into a range. */
typedef struct BA_TrackReading {
    double bpm;
    /** Its probability, 0 to 1; that of the chosen reading and of all others add up to 1. */
    double share;
    /** How long after a beat of the answer its first beat comes, in beats of the answer, 0 to 1. */
    double shift_beats;
    int32_t kind;     /**< BA_TRACK_READING_… */
    int32_t reserved; /**< 0 */
} BA_TrackReading;

/** A stretch of beats of nearly one tempo. */
typedef struct BA_TrackTempoStretch {
    double from_seconds; /**< its first beat */
    double to_seconds;   /**< the first beat of the next stretch, or the last beat of all */
    double bpm;          /**< the mean, a multiple of 0.01 */
} BA_TrackTempoStretch;

/** A key, by what is heard of it in a track. Keys are numbered as in BA_TrackKeyScore. */
typedef struct BA_TrackKeyCandidate {
    int32_t key;      /**< 0 to 23 */
    int32_t reserved; /**< 0 */
    double score;     /**< about −1 to 1.5; only the scores of one track can be compared */
    /** What the scores make of it as a probability, 0 to 1; those of all 24 keys add up to 1. */
    double probability;
} BA_TrackKeyCandidate;

/** A stretch of a track in one key. */
typedef struct BA_TrackKeySegment {
    double from_seconds; /**< 0, or the end of the stretch before */
    double to_seconds;   /**< the length of the track for the last one */
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

/** How often a note is heard. */
typedef struct BA_TrackNote {
    int32_t count;    /**< how many of the 12 strongest semitone bands are this note */
    int32_t reserved; /**< 0 */
    double share;     /**< of those bands' energy, 0 to 1 */
} BA_TrackNote;

/** Everything that is known about one track. */
typedef struct BA_Track BA_Track;
// NOLINTEND(modernize-use-using)

/** What a status means, in one English sentence. Never null, and never to be freed.
 *  @param status  any number; one that is no status is said to be unknown */
BA_API const char* BA_TrackStatusText(int status);

/** Fills in the default of every field.
 *  @param options  null: nothing is done
 *  @param size     sizeof(BA_TrackOptions), which options->size is set to; fields of the host that
 *                  this library does not know become 0. Too small for the field size itself:
 *                  nothing is done */
BA_API void BA_TrackOptionsInit(BA_TrackOptions* options, size_t size);

/** Analyses a track that the host hands out piece by piece.
 *
 *  @param options  null: all defaults. Only read, and only during the call
 *  @param rate     frames per second: 44100 or 48000
 *  @param frames   length of the track, 1 to 2,147,483,647
 *  @param source   only read, and only during the call
 *  @param track    receives the result, to be given to BA_TrackRelease; null after every other
 *                  outcome than BA_TRACK_OK
 *  @return BA_TRACK_OK.
 *          BA_TRACK_BAD_ARGUMENT: rate or frames out of range; track or source null; a function of
 *          the source null; an option or a field of the source out of range, or set where this
 *          library does not know it. Nothing was called. BA_TRACK_NO_MEMORY: memory ran out, in
 *          whichever thread. BA_TRACK_STOPPED: open gave null, read less than 0, progress something
 *          else than 0, or one of them threw. BA_TRACK_WRONG_LENGTH: a pass had fewer or more
 *          frames than stated. Where two threads fail at once, either reason may be given. */
BA_API int BA_TrackAnalyze(const BA_TrackOptions* options, int32_t rate, int64_t frames,
                           const BA_TrackSource* source, BA_Track** track);

/** Analyses a track that lies in memory.
 *
 *  @param left,right  `frames` samples each, full scale ±1.0; only read
 *  The other arguments and the result as for BA_TrackAnalyze; left or right null:
 *  BA_TRACK_BAD_ARGUMENT. */
BA_API int BA_TrackAnalyzeArrays(const BA_TrackOptions* options, int32_t rate, const float* left,
                                 const float* right, int64_t frames, BA_Track** track);

/** Frees a result. Null: nothing. The handle must not be used again. */
BA_API void BA_TrackRelease(BA_Track* track);

/** @name Reading a result
 *
 *  A null handle is answered neutrally, as described at each function; any other value must come
 *  from an analysis and not have been released.
 *
 *  A list is copied to an array of the caller, as much of it as there is room for, from its
 *  beginning; a null array counts as no room. The result is how many there are, whatever was
 *  copied.
 *  @{ */

/** Frames per second, as it was given. 0 for null. */
BA_API int32_t BA_TrackRate(const BA_Track* track);

/** Length in frames, as it was given. 0 for null. */
BA_API int64_t BA_TrackFrames(const BA_Track* track);

/** Tempo in beats per minute, a multiple of 0.01. 0 when none was found, when it was not wanted,
 *  and for null. */
BA_API double BA_TrackBpm(const BA_Track* track);

/** The beats in order of time. None when none were found, when they were not wanted, and for
 *  null. */
BA_API size_t BA_TrackBeats(const BA_Track* track, BA_TrackBeat* out, size_t room);

/** Whether the tempo is steady. 1: one tempo, beats of even distances. 0: it changes along the
 *  track, and the beats follow it. -1: nothing is known of it, since the tempo was not found by
 *  BA_TRACK_TEMPO_AUTO, or none was found; and for null. */
BA_API int32_t BA_TrackIsSteady(const BA_Track* track);

/** How sure tempo and beats are.
 *  @param out  is filled in unless null; all 0 when nothing is known
 *  @return 1; 0 where BA_TrackIsSteady is -1 */
BA_API int32_t BA_TrackTempoConfidence(const BA_Track* track, BA_TrackConfidence* out);

/** What the tempo was before it was brought into the range of the options, a multiple of 0.01;
 *  BA_TrackBpm where there was none. 0 as there. */
BA_API double BA_TrackRawBpm(const BA_Track* track);

/** The likeliest other readings of the beats before they were brought into a range, the likeliest
 *  first, five at the most. None where BA_TrackIsSteady is -1. */
BA_API size_t BA_TrackReadings(const BA_Track* track, BA_TrackReading* out, size_t room);

/** The stretches of nearly one tempo, in order of time: one where the tempo is steady. None where
 *  BA_TrackIsSteady is -1. */
BA_API size_t BA_TrackTempoStretches(const BA_Track* track, BA_TrackTempoStretch* out, size_t room);

/** The points of a waveform overview. None when the waves were not wanted, for a kind that does not
 *  exist, and for null.
 *  @param wave  BA_TRACK_WAVE_… */
BA_API size_t BA_TrackWave(const BA_Track* track, int wave, BA_WaveInfo* out, size_t room);

/** The likeliest key by evidence, numbered as in BA_TrackKeyScore: what sounds, folded into pitch
 *  classes about the track's own tuning, is compared with the profile of each key, and so are the
 *  triads that sound. It is right more often than that of a session, and says how sure it is. -1
 *  when there is none: in silence and in tracks of less than some three quarters of a second; when
 *  it was not wanted; and for null. Confidence, lists and tuning are then 0 or empty. */
BA_API int32_t BA_TrackKey(const BA_Track* track);

/** How sure that key is: the share of tracks of known key on which such an answer was right, 0 to
 *  1; of a few seconds of music it is small, since a few chords fit many keys. Where it is below
 *  0.8, show the second candidate too, or none. */
BA_API double BA_TrackKeyConfidence(const BA_Track* track);

/** All 24 keys, the likeliest first. */
BA_API size_t BA_TrackKeyRanking(const BA_Track* track, BA_TrackKeyCandidate* out, size_t room);

/** Where which key holds, in order of time and without gaps: a stretch of its own for another key
 *  that clearly holds for at least 16 bars, of four beats at 120 BPM where there are no beats, to 8
 *  bars exactly; one stretch of BA_TrackKey where none does. */
BA_API size_t BA_TrackKeySegments(const BA_Track* track, BA_TrackKeySegment* out, size_t room);

/** How strongly the 12 notes from A upward sound, adding up to 1. */
BA_API size_t BA_TrackChroma(const BA_Track* track, double* out, size_t room);

/** How far the track is tuned above 440 Hz, in hundredths of a semitone, -50 to 50; and what its A4
 *  is in Hz. Both 0 for a track without a key. */
BA_API double BA_TrackTuningCents(const BA_Track* track);
BA_API double BA_TrackTuningHz(const BA_Track* track);

/** The key of a session of libbeatatlas, numbered as in BA_TrackKeyScore. -1 when there is none: in
 *  silence and in tracks of less than a second, where all keys score 0; when it was not wanted; and
 *  for null. */
BA_API int32_t BA_TrackSessionKey(const BA_Track* track);

/** All 24 keys of that session, best first. None when BA_TrackSessionKey is -1. */
BA_API size_t BA_TrackSessionKeyRanking(const BA_Track* track, BA_TrackKeyScore* out, size_t room);

/** The 12 notes from A upward: A, A♯, B … G♯. None when BA_TrackSessionKey is -1. */
BA_API size_t BA_TrackNotes(const BA_Track* track, BA_TrackNote* out, size_t room);
/** @} */

#ifdef __cplusplus
}
#endif

#endif
