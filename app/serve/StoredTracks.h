// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "catalogue/Catalogue.h"
#include "catalogue/correction/edits.h"
#include "serve/HttpExchange.h"

namespace app {

/** Single tracks of a catalogue: what the page of a track shows, plays and changes. Each call opens
 *  the catalogue anew, so any thread may call. Everything throws CatalogueError. */
class StoredTracks {
public:
    using Id = std::int64_t;

    explicit StoredTracks(std::string path) : path_(std::move(path)) {}

    /** The data of the view of a track, with `id`, `path`, `gone`, `foundBpm` and `foundKey`.
     *  @return status 404 for a track that is not there */
    HttpReply view(Id track) const;

    /** The bytes of the track's file, or a range of them. */
    HttpReply file(Id track, const std::string& range) const;

    /** See soundReply(). */
    HttpReply sound(Id track) const;

    /** Adds the correction in the body, {"kind": "shift-ms", "value": -12.5}; kinds and values are
     *  those of docs/catalogue.md. @return the view; status 400 or 409 when it cannot be made */
    HttpReply correct(Id track, const std::string& body);

    /** Takes the last correction back. @return the view */
    HttpReply undo(Id track);

private:
    HttpReply viewIn(const catalogue::Catalogue& catalogue, Id track) const;

    std::string path_;
    /** One correction at a time: each is judged by what those before it left. */
    std::mutex changing_;
};

}  // namespace app
