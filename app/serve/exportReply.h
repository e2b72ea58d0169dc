// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "serve/HttpExchange.h"

namespace app {

/** A list as a file: what the request's filter shows, or the tracks whose numbers its body lists,
 *  {"ids": [1, 2]}. `format` is m3u8, csv or json: the forms of `beatatlas list`, JSON as one list.
 *  It is written while it is sent.
 *  @param path  of the catalogue
 *  @throws BadRequest, CatalogueError */
HttpReply exportReply(const std::string& path, const HttpRequest& request);

}  // namespace app
