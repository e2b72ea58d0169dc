// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "cli/CatalogueArgument.h"
#include "cli/Command.h"

namespace app {

/** `beatatlas serve`: the catalogue in a browser, to look through, listen and correct. */
class ServeCommand : public Command {
public:
    std::string name() const override { return "serve"; }
    std::string description() const override {
        return "Show a catalogue in a browser, to look through, hear and correct";
    }
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

private:
    CatalogueArgument catalogue_;
    int port_ = 0;
    std::string address_ = "127.0.0.1";
};

}  // namespace app
