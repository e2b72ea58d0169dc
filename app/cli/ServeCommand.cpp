// SPDX-License-Identifier: MIT
#include "cli/ServeCommand.h"

#include <CLI/CLI.hpp>

#include "catalogue/Catalogue.h"
#include "catalogue/CatalogueError.h"
#include "cli/bracketGuard.h"
#include "cli/messages.h"
#include "cli/numberBetween.h"
#include "serve/Access.h"
#include "serve/Application.h"
#include "serve/HttpServer.h"
#include "serve/Listener.h"

namespace app {

namespace {

constexpr int kHighestPort = 65535;

/** Brings a catalogue of an older version up to date where it may be written, and refuses what is
 *  none before anybody is told an address. @throws CatalogueError */
void requireCatalogue(const std::string& path) {
    try {
        const catalogue::Catalogue writable(path, catalogue::Catalogue::Access::write);
    } catch (const catalogue::CatalogueError& error) {
        const catalogue::Catalogue readable(path, catalogue::Catalogue::Access::read);
        printFileWarning(path, "corrections will be refused; " + std::string(error.what()));
    }
}

}  // namespace

void ServeCommand::declare(CLI::App& arguments) {
    catalogue_.declare(arguments);
    arguments.add_option("--port", port_, "the port to listen at (default: any that is free)")
        ->check(wholeNumberBetween(0, kHighestPort))
        ->option_text("N");
    arguments
        .add_option("--listen", address_,
                    "the address to listen at, in numbers (default: 127.0.0.1, which only\n"
                    "programs on this computer reach). At any other one, whoever can read the\n"
                    "network's traffic can read along and act in your name: it is not encrypted")
        ->option_text("ADDRESS");
}

ExitCode ServeCommand::run(ResultStream& results) {
    const std::string path = catalogue_.path();
    requireCatalogue(path);
    const Listener listener(unguarded(address_), port_);
    const Access access(listener.address(), listener.port(), listener.isForAll());
    Application application(path, access);
    HttpServer server(listener.socket(), [&application](const HttpRequest& request) {
        return application.answer(request);
    });
    results.write(access.invitation() + "\n");
    printFileNote(path, "open the address above in a browser; Ctrl-C ends this");
    if (!listener.isLoopback())
        printFileWarning(path, "other computers can reach this, and nothing is encrypted: whoever "
                               "reads the network's traffic can read along and act in your name");
    server.run();
    return kExitDone;
}

}  // namespace app
