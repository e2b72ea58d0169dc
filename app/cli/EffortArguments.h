// SPDX-License-Identifier: MIT
#pragma once

#include "media/Effort.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments that say how much of the machine a command may take. */
class EffortArguments {
public:
    EffortArguments();

    void declare(CLI::App& arguments);

    const media::Effort& effort() const { return effort_; }

private:
    media::Effort effort_;
};

}  // namespace app
