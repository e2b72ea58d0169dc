// SPDX-License-Identifier: MIT
#pragma once

#include "media/Effort.h"

namespace CLI {
class App;
}

namespace app {

/** The arguments that limit the memory and threads of a command. */
class EffortArguments {
public:
    EffortArguments();

    void declare(CLI::App& arguments);

    const media::Effort& effort() const { return effort_; }

private:
    media::Effort effort_;
};

}  // namespace app
