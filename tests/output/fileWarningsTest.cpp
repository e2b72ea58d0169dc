// SPDX-License-Identifier: MIT
#include "output/fileWarnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace output {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(fileWarnings, AreNoneForASoundFile) {
    EXPECT_THAT(fileWarnings({}), IsEmpty());
}

TEST(fileWarnings, TellWhereAndHowLongTheGapsAre) {
    base::TrackSource file;
    file.damagedPackets = 7;
    file.gaps = {{61.25, 0.5}};
    EXPECT_THAT(fileWarnings(file),
                ElementsAre("is damaged: 1 gap, 0.50 s in all, at 1:01.25 (0.50 s); silence was "
                            "put there"));
}

TEST(fileWarnings, NameAFewGapsAndCountTheRest) {
    base::TrackSource file;
    for (int i = 0; i < 6; ++i) file.gaps.push_back({10.0 * i, 0.25});
    EXPECT_THAT(fileWarnings(file),
                ElementsAre("is damaged: 6 gaps, 1.50 s in all, at 0:00.00 (0.25 s), 0:10.00 "
                            "(0.25 s), 0:20.00 (0.25 s), 0:30.00 (0.25 s) and 2 more; silence was "
                            "put there"));
}

TEST(fileWarnings, TellOfDamageThatLeftNoGap) {
    base::TrackSource file;
    file.damagedPackets = 2;
    file.repeatedPackets = 1;
    file.lacksEnd = true;
    file.isCutOff = true;
    file.format.changes = true;
    EXPECT_THAT(fileWarnings(file),
                ElementsAre("is cut off; only its beginning was taken",
                            "is damaged in 2 places; what can be decoded there was taken",
                            "has 1 packet twice; they were taken once",
                            "has no mark of its end: it may have been cut off",
                            "changes its sample rate or its channels on the way"));
}

}  // namespace
}  // namespace output
