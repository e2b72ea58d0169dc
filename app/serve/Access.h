// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "serve/HttpExchange.h"

namespace app {

/** Decides who is answered.
 *
 *  Whoever knows the address that was printed gets a cookie for it, and is sent on to an address
 *  without the secret, which thus stays in no history. All else takes that cookie. Pages of other
 *  sites, of other programs on the same computer, and names that were made to lead here by a foreign
 *  name server are refused whether they have the cookie or not.
 *
 *  A browser sends the cookie to every port of this host. Another program on the same computer whose
 *  page the person opens receives it and can act with it; no cookie can be bound to a port. */
class Access {
public:
    /** @param address   at which the server listens, in numbers
     *  @param port      likewise
     *  @param isForAll  it listens at every address of the computer */
    Access(const std::string& address, int port, bool isForAll);

    /** For the person who started the program: leads to the first page. */
    std::string invitation() const;

    /** The answer to a request that is not to be handled; nothing for all others. */
    std::optional<HttpReply> refusal(const HttpRequest& request) const;

private:
    bool isOwnHost(const std::string& host) const;
    bool isInvited(const HttpRequest& request) const;
    bool hasCookie(const HttpRequest& request) const;
    HttpReply admission() const;

    std::string home_;
    int port_;
    bool isForAll_;
    std::string token_;
    /** What the cookie holds: the token that was printed does not open anything by itself. */
    std::string pass_;
};

/** Whether the text is an address in numbers, as it stands in the address of a page. */
bool isNumericHost(const std::string& host);

}  // namespace app
