// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "catalogue/Analysed.h"
#include "catalogue/CatalogueError.h"

namespace catalogue {
namespace {

using beatatlas::track::Options;
using beatatlas::track::TempoMode;

TEST(Parameters, LeaveOutWhatDoesNotChangeAResult) {
    Options options;
    const std::string usual = parametersText(options);
    EXPECT_EQ(usual, R"({"tempo":"auto","key":true,"sessionKey":false,"waves":true})");
    options.threads = 2;
    options.progress = [](double) {};
    options.sectionBeats = 8;   // of the varied tempo
    options.rangeSeconds = 30;  // of the simple tempo
    EXPECT_EQ(parametersText(options), usual);
}

TEST(Parameters, DifferWhereResultsMay) {
    std::vector<Options> all(9);
    all[1].tempo = TempoMode::constant;
    all[2].tempo = TempoMode::varied;
    all[3].tempo = TempoMode::varied;
    all[3].sectionBeats = 8;
    all[4].wantsKey = false;
    all[5].wantsWaves = false;
    all[6].wantsSessionKey = true;
    all[7].lowestBpm = 85.0;
    all[7].highestBpm = 170.0;
    all[8].beatsPerBar = 3;
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_NE(parametersText(all[i]), parametersText(all[j])) << i << ' ' << j;
    }
}

TEST(Parameters, GiveTheOptionsBack) {
    Options options;
    options.lowestBpm = 85.5;
    options.highestBpm = 171.0;
    options.beatsPerBar = 3;
    options.wantsKey = false;
    EXPECT_EQ(parametersText(optionsOf(parametersText(options))), parametersText(options));
    EXPECT_EQ(optionsOf(parametersText(options)).lowestBpm, 85.5);
    Options varied;
    varied.tempo = TempoMode::varied;
    varied.sectionBeats = 8;
    EXPECT_EQ(optionsOf(parametersText(varied)).sectionBeats, 8);
}

TEST(Parameters, RefuseTextThatIsNone) {
    for (const char* text : {"", "{}", "[]", "null", R"({"tempo":"fast","key":true})",
                             R"({"tempo":1})", R"({"tempo":"auto","key":"yes"})"})
        EXPECT_THROW(optionsOf(text), CatalogueError) << text;
}

}  // namespace
}  // namespace catalogue
