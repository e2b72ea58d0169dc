// SPDX-License-Identifier: MIT
#include "comparison/keyRelation.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace comparison {
namespace {

double scoreOf(const std::string& key, const std::string& other) {
    return keyRelation(*keyNamed(key), *keyNamed(other)).score;
}

std::string nameOf(const std::string& key, const std::string& other) {
    return keyRelation(*keyNamed(key), *keyNamed(other)).name;
}

TEST(KeyRelation, WeighsAsMirexDoes) {
    EXPECT_EQ(scoreOf("C major", "C major"), 1.0);
    EXPECT_EQ(scoreOf("G major", "C major"), 0.5);
    EXPECT_EQ(scoreOf("F# minor", "B minor"), 0.5);
    EXPECT_EQ(scoreOf("A minor", "C major"), 0.3);
    EXPECT_EQ(scoreOf("C major", "A minor"), 0.3);
    EXPECT_EQ(scoreOf("C minor", "C major"), 0.2);
    EXPECT_EQ(scoreOf("D major", "C major"), 0.0);
    EXPECT_EQ(scoreOf("F major", "C major"), 0.0);
    EXPECT_EQ(nameOf("F major", "C major"), "fifth below");
    EXPECT_EQ(nameOf("E minor", "C major"), "other");
}

TEST(KeyRelation, FindsOneRelativeAndOneParallelOfEachKey) {
    for (int key = 0; key < kKeys; ++key) {
        double sum = 0.0;
        for (int other = 0; other < kKeys; ++other) sum += keyRelation(key, other).score;
        EXPECT_DOUBLE_EQ(sum, 1.0 + 0.5 + 0.3 + 0.2) << key;
    }
}

TEST(KeyRelation, KnowsKeysByTheirNames) {
    EXPECT_EQ(keyNamed("A major"), 0);
    EXPECT_EQ(keyNamed("Ab"), 11);
    EXPECT_EQ(keyNamed("G#:minor"), 23);
    EXPECT_EQ(keyNamed("Gb:min"), 21);
    EXPECT_EQ(keyNamed("F#m"), 21);
    EXPECT_EQ(keyNamed("Cb Major"), 2);
    EXPECT_EQ(keyNamed("B#"), 3);
    EXPECT_EQ(keyNamed("Fbb"), 6);
    for (const char* name : {"", "H minor", "C:dorian", "N", "12", "C mixed", " A", "Abbb"})
        EXPECT_EQ(keyNamed(name), std::nullopt) << name;
}

}  // namespace
}  // namespace comparison
