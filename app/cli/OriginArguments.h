// SPDX-License-Identifier: MIT
#pragma once

#include "output/TimeOrigin.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments that say from where positions are counted. */
class OriginArguments {
public:
    void declare(CLI::App& arguments);

    const output::TimeOrigin& origin() const { return origin_; }

private:
    output::TimeOrigin origin_;
};

}  // namespace app
