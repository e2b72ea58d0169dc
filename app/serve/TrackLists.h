// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "base/ListedTrack.h"
#include "catalogue/Catalogue.h"
#include "catalogue/query/runningScan.h"
#include "serve/HttpExchange.h"

namespace app {

struct TrackFilter;

/** Lists of a catalogue a page at a time. Of the lists asked for last the order is kept, so that a
 *  page of a hundred thousand tracks takes no longer than the first one; until the catalogue
 *  changes, which is noticed, also when another file is put in its place. Any thread may call. */
class TrackLists {
public:
    explicit TrackLists(std::string path);
    ~TrackLists();

    /** The tracks or failures from `offset` on, `limit` of them: `total`, `revision`, `offset` and
     *  `tracks` or `failures`. @throws BadRequest, CatalogueError */
    nlohmann::ordered_json page(const HttpRequest& request);

    /** For each of the tracks `ids` its strip: a byte for each of some hundred points, level 0 to 31
     *  times 8 plus color, as base64. @throws BadRequest, CatalogueError */
    nlohmann::ordered_json strips(const HttpRequest& request);

    /** How many there are, the `revision`, which differs whenever lists may, and how far the `scan`
     *  is that fills the catalogue: `planned`, `done`, `failed`, `audioSeconds` and `startedAt`;
     *  null while there is none. @throws CatalogueError */
    nlohmann::ordered_json totals();

private:
    struct Ordered {
        std::string question;
        bool isOfFailures = false;
        std::vector<std::int64_t> ids;
        std::vector<base::ListedFailure> failures;
    };

    void refresh();
    std::optional<catalogue::ScanProgress> runningScan();
    const Ordered& ordered(const HttpRequest& request);

    std::string path_;
    std::mutex mutex_;
    std::unique_ptr<catalogue::Catalogue> catalogue_;
    std::pair<std::uint64_t, std::uint64_t> file_{};
    std::int64_t changeNumber_ = 0;
    std::int64_t revision_ = 0;
    /** When the scan began that was found to be dead; 0: none. */
    std::int64_t deadScan_ = 0;
    /** The one asked for last first. */
    std::list<Ordered> kept_;
};

}  // namespace app
