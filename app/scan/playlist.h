// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace app {

/** Whether a file's name says that it is a list of tracks: M3U, M3U8 or PLS. */
bool isPlaylist(const std::string& path);

/** What a playlist names. */
struct Playlist {
    /** Files, in the list's order; they need not be there. A relative one lies beside the list. */
    std::vector<std::string> files;
    /** What is no file here: radio stations and the like. */
    std::vector<std::string> addresses;
};

/** Reads a playlist.
 *
 *  Lists are written by many programs in many ways. UTF-8 and UTF-16 are recognised by their mark,
 *  UTF-8 also without one, lines end in LF, CR LF or CR, and files may be named by "file:"
 *  addresses. Where no file has the name as it stands, it is read as Windows writes it: in its
 *  Western code page, with backslashes between folders; and with percent escapes.
 *  @throws TrackError when the list cannot be read */
Playlist readPlaylist(const std::string& path);

}  // namespace app
