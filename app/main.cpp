// SPDX-License-Identifier: MIT
#include "base/Interrupt.h"
#include "cli/Program.h"
#include "io/ResultStream.h"
#include "io/StandardStreams.h"

int main(int argc, char** argv) {
    const app::StandardStreams streams;
    base::Interrupt::install();
    app::ResultStream results(streams.resultDescriptor());
    return app::Program(results).run(argc, argv);
}
