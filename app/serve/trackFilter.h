// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <stdexcept>

#include "catalogue/Catalogue.h"
#include "catalogue/query/TrackQuery.h"
#include "serve/HttpExchange.h"

namespace app {

/** A request that asks for something impossible. The text says what would be possible. */
class BadRequest : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** What a list of the application shows. */
struct TrackFilter {
    catalogue::TrackQuery query;
    /** Instead: files that could not be analysed, of which only isReversed counts. */
    bool wantsFailures = false;
};

/** From the parameters text, lowest, highest (BPM), key, compatible (a track's number), low,
 *  corrected, gone, failed, sort and reverse; what they mean is what the options of `beatatlas list`
 *  mean. @throws BadRequest, CatalogueError */
TrackFilter filterOf(const HttpRequest& request, const catalogue::Catalogue& catalogue);

/** A number of a track, as it stands in addresses; nothing for any other text. */
std::optional<std::int64_t> trackNumber(const std::string& text);

/** A parameter from lowest to highest, or the usual one where there is none. @throws BadRequest */
std::int64_t countOf(const HttpRequest& request, const std::string& name, std::int64_t usual,
                     std::int64_t highest);

}  // namespace app
