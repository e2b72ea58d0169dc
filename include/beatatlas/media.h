/* SPDX-License-Identifier: MIT */
/** @file
 *  Beat Atlas for files: pass in the name of an audio file and read everything the analysis found.
 *
 *  libbeatatlas_media adds FFmpeg's decoders and a rate converter to the analysis of
 *  libbeatatlas_track, whose getters read the results: a host links both. C linkage; compiles as
 *  C99 and as C++.
 *
 *      BA_File* file;
 *      if (BA_FileAnalyze("track.mp3", NULL, NULL, &file) == BA_FILE_OK)
 *          printf("%.2f BPM\n", BA_TrackBpm(BA_FileTrack(file)));
 *      else
 *          fprintf(stderr, "track.mp3 %s\n", BA_FileReason(file));
 *      BA_FileRelease(file);
 *
 *  A file is decoded once, from its first frame of music to its last: the delay that encoders add
 *  is left out, and position 0 is the first frame of music. Channels are folded to stereo; audio at
 *  other rates than 44,100 and 48,000 frames per second is converted to one of them. Any number of
 *  analyses may run at once, each in a thread of the host. */
#ifndef BEATATLAS_MEDIA_H
#define BEATATLAS_MEDIA_H

#include "beatatlas/track.h"

#ifdef __cplusplus
extern "C" {
#endif

// C reads this as well: NOLINTBEGIN(modernize-use-using)

/** How the analysis of a file ended. */
enum BA_FileStatus {
    BA_FILE_OK = 0,       /**< there is a result */
    BA_FILE_BAD_ARGUMENT, /**< an argument or an option is out of range */
    BA_FILE_NO_MEMORY,    /**< memory ran out */
    BA_FILE_STOPPED,      /**< the progress call asked to stop */
    BA_FILE_MISSING,      /**< there is no such file */
    BA_FILE_UNREADABLE,   /**< the system does not let it be read */
    BA_FILE_NOT_AUDIO,    /**< it holds no audio of a known kind, or nothing */
    BA_FILE_DAMAGED       /**< it holds audio, but no whole track: cut off, broken */
};

/** How a file is read. BA_FileOptionsInit fills in the defaults; `size` works as in
 *  BA_TrackOptions. */
typedef struct BA_FileOptions {
    size_t size; /**< sizeof(BA_FileOptions) as the host was compiled */

    /** Memory in bytes that may be used to keep the decoded track, above 0. A longer track is
     *  decoded more than once if it has to be read more than once; results stay the same. Default:
     *  1 GiB. */
    int64_t memory_bytes;

    /** Not 0: analyses what is left of a file that was cut off, instead of refusing it. Default:
     *  0. */
    int32_t accepts_cut_off;
    int32_t reserved; /**< 0 */
} BA_FileOptions;

/** What a file is, and its state. The texts belong to the BA_File. */
typedef struct BA_FileFacts {
    const char* container;    /**< FFmpeg's short name, e.g. "mp3" */
    const char* codec;        /**< FFmpeg's short name, e.g. "mp3float" is "mp3" */
    const char* artist;       /**< by the tags, UTF-8 as a rule; empty if they lack it */
    const char* title;        /**< the same */
    int64_t damaged_packets;  /**< that could not be decoded, or only in part */
    int64_t repeated_packets; /**< that were in the file twice and were taken once */

    /** Frames at file_rate between the first one that the decoder yields and the first frame of
     *  music, where positions begin: the delay of encoder and decoder, which was left out. */
    int64_t dropped_frames;
    int32_t channels;       /**< at the beginning of the track, like file_rate */
    int32_t file_rate;      /**< Hz */
    int32_t format_changes; /**< 1: rate or channels change on the way */
    int32_t is_cut_off;     /**< 1: the file holds only the beginning of the track */
    int32_t lacks_end;      /**< 1: the format marks the end of a file, and this file lacks it */
    int32_t reserved;       /**< 0 */

    /** Samples that were looked at, as many as the analysis got: at its rate, of left and right,
     *  once where both are the same. The members that follow count among these. */
    int64_t samples;
    int64_t clipped_samples; /**< beyond full scale, analysed as full scale */

    /** The loudest of the clipped samples without its sign: full scale is 1, infinity is possible;
     *  0: none was clipped. */
    double clipped_peak;
    int64_t not_numbers; /**< samples that were NaN, analysed as silence */

    /** 1: so much was clipped that the results may suffer: more than one sample in a hundred, or
     *  one of at least 2 (6 dB over full scale). Less comes from lossy decoders and from conversion
     *  between rates, and does no harm. */
    int32_t is_too_loud;
    int32_t reserved_level; /**< 0 */
} BA_FileFacts;

/** A section that the file no longer holds; it was replaced by silence. */
typedef struct BA_FileGap {
    double start_seconds;  /**< from the first frame of music */
    double length_seconds; /**< of the silence */
} BA_FileGap;

/** The outcome of the analysis of one file. */
typedef struct BA_File BA_File;
// NOLINTEND(modernize-use-using)

/** Fills in the default of every field, as BA_TrackOptionsInit does. */
BA_API void BA_FileOptionsInit(BA_FileOptions* options, size_t size);

/** Analyses a file.
 *
 *  @param path     its name, in the bytes of the file system. "-" is a file of that name
 *  @param track    what to find out; null: all defaults. With `threads` at 2 or more, one thread
 *                  decodes. `progress` is called as BA_TrackOptions states, for decoding and
 *                  analysis together
 *  @param options  how to read; null: all defaults
 *  @param file     receives the outcome, to be freed by BA_FileRelease, also if there is no result:
 *                  it holds the reason then. Null after BA_FILE_BAD_ARGUMENT and BA_FILE_NO_MEMORY
 *  @return BA_FILE_… */
BA_API int BA_FileAnalyze(const char* path, const BA_TrackOptions* track,
                          const BA_FileOptions* options, BA_File** file);

/** Analyses samples in memory, converted and folded as those of a file are.
 *
 *  @param samples   `frames` times `channels` floats, full scale ±1.0, the channels of a frame one
 *                   after the other; only read
 *  @param rate      frames per second, 1 to 2,147,483,647. Rates that cannot be converted are
 *                   refused with BA_FILE_DAMAGED and a reason
 *  @param channels  1 to 64; from 3 on in the usual order of so many loudspeakers, as in WAVE files
 *  @param frames    at least 1
 *  @param track     as in BA_FileAnalyze
 *  @param file      the same
 *  @return as BA_FileAnalyze */
BA_API int BA_FileAnalyzeSamples(const float* samples, int32_t rate, int32_t channels,
                                 int64_t frames, const BA_TrackOptions* track, BA_File** file);

/** Frees an outcome with everything that belongs to it. Null: nothing. */
BA_API void BA_FileRelease(BA_File* file);

/** The results, for the getters of track.h. They belong to the file: BA_TrackRelease must not be
 *  called. Null if there are none, and for null. */
BA_API const BA_Track* BA_FileTrack(const BA_File* file);

/** Why there is no result, without the file's name: "is empty", "cannot be read: …". Empty if there
 *  is one, and for null. Belongs to the file. */
BA_API const char* BA_FileReason(const BA_File* file);

/** What the file is.
 *  @param file   an outcome
 *  @param facts  filled in unless null: `size` bytes of it
 *  @param size   sizeof(BA_FileFacts) as the host was compiled
 *  @return 1; 0 if there is no result, and for null: nothing is filled in then */
BA_API int32_t BA_FileFactsOf(const BA_File* file, BA_FileFacts* facts, size_t size);

/** The gaps, in order of time; copied as the lists of track.h are. */
BA_API size_t BA_FileGaps(const BA_File* file, BA_FileGap* out, size_t room);

/** FFmpeg's own messages: shown on standard error (not 0), or nowhere. This holds for the whole
 *  process. A host that does not call it keeps FFmpeg's default. */
BA_API void BA_FileShowMessages(int32_t shown);

#ifdef __cplusplus
}
#endif

#endif
