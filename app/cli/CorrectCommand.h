// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "catalogue/correction/edits.h"
#include "cli/StoredTracksCommand.h"

namespace app {

/** `beatatlas correct FILE…`: what a person knows better than the analysis. */
class CorrectCommand : public StoredTracksCommand {
public:
    std::string name() const override { return "correct"; }
    std::string description() const override { return "Correct tempo, beats or key of tracks"; }

private:
    void declareOwn(CLI::App& arguments) override;
    void settle() override;
    catalogue::Catalogue::Access access() const override {
        return catalogue::Catalogue::Access::write;
    }
    void handle(const catalogue::Catalogue& catalogue, const std::string& file,
                ResultStream& results) override;

    std::optional<double> bpm_;
    bool isDoubled_ = false;
    bool isHalved_ = false;
    bool isShiftedByHalf_ = false;
    std::optional<double> shiftMilliseconds_;
    std::optional<double> downbeatSeconds_;
    std::optional<std::string> key_;
    bool isUndone_ = false;
    /** Nothing: the last one is undone. */
    std::optional<catalogue::Edit> edit_;
};

}  // namespace app
