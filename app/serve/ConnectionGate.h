// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "serve/Connection.h"
#include "serve/requestFrame.h"

namespace app {

/** Takes connections and gathers their requests, all in one thread that never waits for a single
 *  one: a client that is slow to say what it wants costs a descriptor and the bytes it sent. Where
 *  there are too many of those, the one that waits longest makes room. */
class ConnectionGate {
public:
    /** Receives a connection whose request is whole. */
    using Take = std::function<void(std::unique_ptr<Connection>, const RequestFrame&)>;

    /** @param listening  a socket that listens and does not block; stays the caller's
     *  @param take       hands the connection on and returns at once */
    ConnectionGate(int listening, Take take);

    /** Waits a moment for something to happen, and deals with it. */
    void step();

private:
    void receive(std::unique_ptr<Connection>& connection);
    void dismissLate();
    void makeRoom();
    void acceptSome();
    void noteRefusal(int errorNumber);
    void dropOverload();

    int listening_;
    Take take_;
    int mostOpen_;
    /** Of those handed on, too. */
    std::shared_ptr<ConnectionLoad> load_ = std::make_shared<ConnectionLoad>();
    /** In the order in which they came. */
    std::vector<std::unique_ptr<Connection>> waiting_;
};

}  // namespace app
