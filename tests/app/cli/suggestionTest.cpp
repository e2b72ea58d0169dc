// SPDX-License-Identifier: MIT
#include "cli/suggestion.h"

#include <gtest/gtest.h>

namespace app {
namespace {

const std::vector<std::string> kNames = {"analyze", "draw", "key", "--waves", "-q"};

TEST(Suggestion, IsTheNameThatIsASlipAway) {
    for (const char* word : {"analize", "anlayze", "analyse", "analyzee", "Analyze", "anal"})
        EXPECT_EQ(suggestion(word, kNames), "; did you mean analyze?") << word;
    EXPECT_EQ(suggestion("kye", kNames), "; did you mean key?");
    EXPECT_EQ(suggestion("--wave", kNames), "; did you mean --waves?");
    EXPECT_EQ(suggestion("-Q", kNames), "; did you mean -q?");
}

TEST(Suggestion, IsNothingWhereNoNameIsNear) {
    for (const std::string word : {"", "x", "sing", "-x", "dr", "--loud"})
        EXPECT_EQ(suggestion(word, kNames), "") << word;
    EXPECT_EQ(suggestion(std::string(100000, 'a'), kNames), "");
}

}  // namespace
}  // namespace app
