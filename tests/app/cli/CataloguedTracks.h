// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "catalogue/Catalogue.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace test {

/** A catalogue of five tracks, one of them gone, and two failures. */
class CataloguedTracks : public testing::Test {
protected:
    CataloguedTracks();

    /** The program's command with these arguments, on this catalogue. */
    ToolRun catalogued(const std::string& command, std::vector<std::string> arguments);

    /** The last parts of the paths in the lines of JSON that a command prints. */
    std::vector<std::string> namesIn(const std::string& command,
                                     const std::vector<std::string>& arguments);

    TemporaryFolder folder_;
    std::string path_ = folder_.file("c.sqlite");
};

}  // namespace test
