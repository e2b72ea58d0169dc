// SPDX-License-Identifier: MIT
#pragma once

/** The tables that the benchmark program prints in Markdown to standard output. */
namespace beatatlas::bench {

/** The whole session against decodings of the same track from compressed files. */
void printDecodeRace();

/** Every component in every vector form of this machine. */
void printComponents();

/** The stand-alone utilities, as multiples of real time. */
void printUtilities();

/** The whole session over tracks of one minute to three hours, or to ten hours.
 *  @param program  where to find this program: each length has a process of its own */
void printLengths(const char* program, bool tenHours);

/** The command-line program against one decoding of the same file, its memory, and a track that
 *  does not fit into memory.
 *  @param program   where to find this program: each decoding has a process of its own too
 *  @param tenHours  also measures the memory of a track of ten hours */
void printTool(const char* program, bool tenHours);

/** The work of such a process: prints one line of figures about a session of this length. */
void measureLength(int seconds);

}  // namespace beatatlas::bench
