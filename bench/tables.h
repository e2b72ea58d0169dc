// SPDX-License-Identifier: MIT
#pragma once

/** The tables that the benchmark program prints, each in Markdown and to standard output. */
namespace beatatlas::bench {

/** The whole session against decodings of the same track from compressed files. */
void printDecodeRace();

/** Every component in every vector form of this machine. */
void printComponents();

/** The stand-alone utilities, in times real time. */
void printUtilities();

/** The whole session over tracks of a minute to three hours, to ten where wished.
 *  @param program  where to find this program: each length has a process of its own */
void printLengths(const char* program, bool tenHours);

/** The command-line program against one decoding of the same file, its memory, and a track that memory cannot hold.
 *  @param program   as above: each decoding is a process as well
 *  @param tenHours  measures the memory of a track of ten hours too */
void printTool(const char* program, bool tenHours);

/** What such a process does: prints one line of figures about a session of so many seconds. */
void measureLength(int seconds);

}  // namespace beatatlas::bench
