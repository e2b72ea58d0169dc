// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "catalogue/Analysed.h"
#include "cli/CataloguedTracks.h"
#include "serve/Exchange.h"
#include "support/RunningTool.h"

namespace test {

/** The catalogue of CataloguedTracks, served by the program to a client that was let in. */
class ServedCatalogue : public CataloguedTracks {
protected:
    ServedCatalogue() { start(); }

    /** Starts the program, anew if it runs, and lets the client in. */
    void start(const std::vector<std::string>& options = {});

    using Headers = std::map<std::string, std::string>;

    /** A request as a page of the application makes it. @param other  in place of the usual headers,
     *  "" for none */
    Answer request(const std::string& method, const std::string& target, const std::string& body,
                   const Headers& other = {}) const;
    Answer get(const std::string& target, const Headers& other = {}) const {
        return request("GET", target, "", other);
    }
    Answer post(const std::string& target, const std::string& body,
                const Headers& other = {}) const {
        return request("POST", target, body, other);
    }

    /** The bytes of such a request. */
    std::string bytesOf(const std::string& method, const std::string& target,
                        const std::string& body, const Headers& other) const;

    std::string host() const { return "127.0.0.1:" + std::to_string(port_); }

    /** The number of the track whose path ends so. */
    std::string numberOf(const std::string& end) const;

    std::unique_ptr<RunningTool> tool_;
    /** What it printed. */
    std::string address_;
    int port_ = 0;
    /** "name=value" */
    std::string cookie_;
};

/** As a scan notes it. */
catalogue::FileState stateOf(const std::string& path);

}  // namespace test
