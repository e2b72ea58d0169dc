// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace app {

/** The option --catalogue, which every command with a catalogue has. */
class CatalogueArgument {
public:
    void declare(CLI::App& arguments);

    /** The file that was named, or the user's own: $XDG_DATA_HOME/beatatlas/catalogue.sqlite, where
     *  $XDG_DATA_HOME is ~/.local/share unless it is set.
     *  @throws UsageError when none was named and there is no home folder */
    std::string path() const;

    /** The same for a command that creates a catalogue: makes the folder of the user's own.
     *  @throws OutputError when that cannot be made */
    std::string pathToCreate() const;

private:
    std::optional<std::string> path_;
};

}  // namespace app
