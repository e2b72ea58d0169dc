// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "cli/StoredTracksCommand.h"

namespace app {

/** `beatatlas forget FILE…`: takes tracks out of a catalogue; the files stay. */
class ForgetCommand : public StoredTracksCommand {
public:
    std::string name() const override { return "forget"; }
    std::string description() const override { return "Take tracks out of a catalogue"; }

private:
    void declareOwn(CLI::App& arguments) override;
    catalogue::Catalogue::Access access() const override {
        return catalogue::Catalogue::Access::write;
    }
    void handle(const catalogue::Catalogue& catalogue, const std::string& file,
                ResultStream& results) override;

    bool withCorrections_ = false;
};

}  // namespace app
