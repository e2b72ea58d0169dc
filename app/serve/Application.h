// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "serve/Access.h"
#include "serve/HttpExchange.h"
#include "serve/StoredTracks.h"
#include "serve/TrackLists.h"

namespace app {

/** The application over a catalogue: which address leads to what. A client names tracks by their
 *  numbers in the catalogue and files of the application by their names; it never names a path. */
class Application {
public:
    /** @param path    of the catalogue
     *  @param access  lives longer than this */
    Application(std::string path, const Access& access);

    /** Any thread may call. */
    HttpReply answer(const HttpRequest& request);

private:
    HttpReply answerAdmitted(const HttpRequest& request);
    HttpReply answerTrack(const HttpRequest& request);
    HttpReply dispatchTrack(const HttpRequest& request, StoredTracks::Id track,
                            const std::string& what);
    HttpReply held(const std::function<HttpReply()>& make);

    std::string path_;
    const Access& access_;
    TrackLists lists_;
    StoredTracks tracks_;
    std::atomic<int> slowReplies_{0};
};

}  // namespace app
