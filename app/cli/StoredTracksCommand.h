// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"
#include "cli/CatalogueArgument.h"
#include "cli/Command.h"

namespace app {

/** A command that takes any number of tracks of a catalogue. One that fails keeps it from none of
 *  the others. */
class StoredTracksCommand : public Command {
public:
    void declare(CLI::App& arguments) override;
    ExitCode run(ResultStream& results) override;

protected:
    virtual void declareOwn(CLI::App& arguments) = 0;

    /** Before any track. @throws UsageError when two arguments do not go together */
    virtual void settle() {}
    virtual catalogue::Catalogue::Access access() const = 0;

    virtual void begin(ResultStream& /*results*/) {}

    /** Does the work for one file. @throws TrackError, DamagedRecord with the reason why it
     *  cannot be done */
    virtual void handle(const catalogue::Catalogue& catalogue, const std::string& file,
                        ResultStream& results) = 0;

    /** In place of handle() when that threw. */
    virtual void addFailure(const std::string& /*file*/, const std::string& /*reason*/) {}
    virtual void end() {}

private:
    bool attempt(const catalogue::Catalogue& catalogue, const std::string& file,
                 ResultStream& results);

    CatalogueArgument catalogue_;
    std::vector<std::string> files_;
};

}  // namespace app
