// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "doctor/Check.h"

namespace app {

/** Something that is as it is, and nothing to judge. */
struct Fact {
    std::string subject;
    std::string text;
};

/** What the program is, where it runs, and whether it works. */
class Report {
public:
    /** Looks at everything; takes a second or so. */
    static Report made();

    Report(std::vector<Fact> facts, std::vector<Check> checks);

    bool isWell() const;

    /** Lines for people, with the facts first. */
    std::string text() const;

    /** One JSON document, in one line. */
    std::string json() const;

private:
    long count(Outcome outcome) const;

    std::vector<Fact> facts_;
    std::vector<Check> checks_;
};

}  // namespace app
