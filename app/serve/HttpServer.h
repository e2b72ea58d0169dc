// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "serve/HttpExchange.h"

namespace app {

/** Answers the requests that arrive at a socket until the program is to end. Each connection carries
 *  one request; several are answered at the same time. */
class HttpServer {
public:
    /** Called from several threads; what it throws becomes an answer with status 500. */
    using Handler = std::function<HttpReply(const HttpRequest&)>;

    /** @param listening  as Listener::socket() */
    HttpServer(int listening, Handler handler)
        : listening_(listening), handler_(std::move(handler)) {}

    /** Returns once the program is asked to end, see base::Interrupt; answers that are under way
     *  then are cut off. */
    void run();

private:
    int listening_;
    Handler handler_;
};

}  // namespace app
