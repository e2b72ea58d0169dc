// SPDX-License-Identifier: MIT
// Any bytes as a playlist of each kind: lines of any ending and encoding, addresses, escapes.
#include <algorithm>
#include <string>
#include <string_view>

#include "base/errors.h"
#include "require.h"
#include "scan/playlist.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace beatatlas::fuzz;

/** Each entry is of a line of its own. Only the escapes of a file's address can name the end of
 *  one. */
void check(const app::Playlist& list, std::string_view bytes) {
    const auto endsLine = [](char byte) { return byte == '\n' || byte == '\r'; };
    const auto ends = std::count_if(bytes.begin(), bytes.end(), endsLine);
    require(std::ssize(list.files) + std::ssize(list.addresses) <= ends + 1, "an entry a line");
    for (const std::string& file : list.files) require(!file.empty(), "a name");
    for (const std::string& address : list.addresses) {
        require(address.find(':') != std::string::npos, "an address");
        require(std::none_of(address.begin(), address.end(), endsLine), "an address on one line");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static const test::TemporaryFolder folder;
    const std::string text(reinterpret_cast<const char*>(bytes), count);
    for (const char* name : {"list.m3u8", "list.pls"}) {
        const std::string path = folder.file(name);
        test::writeFile(path, text);
        try {
            check(app::readPlaylist(path), text);
        } catch (const base::TrackError& error) {
            require(!std::string_view(error.what()).empty(), "a reason");
        }
    }
    return 0;
}
