// SPDX-License-Identifier: MIT
#include "media/tags/planTags.h"

#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace media {
namespace {

using base::TagChange;
using Kind = base::TagChange::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

/** Tags in memory, with a field for whole numbers beside the exact one, or without. */
class PlainFields : public TagFields {
public:
    PlainFields(bool hasExact, std::map<std::string, std::string> values)
        : hasExact_(hasExact), values_(std::move(values)) {}

    std::vector<std::string> names(TagMeaning meaning) const override {
        if (meaning == TagMeaning::tempo) return {"tempo", "other tempo"};
        if (meaning == TagMeaning::key) return {"key", "other key"};
        return hasExact_ ? std::vector<std::string>{"exact"} : std::vector<std::string>{};
    }
    std::optional<std::string> value(const std::string& field) const override {
        const auto found = values_.find(field);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }
    void set(const std::string&, const std::string&) override {}
    void remove(const std::string&) override {}
    std::vector<std::string> listing() const override { return {}; }

private:
    bool hasExact_;
    std::map<std::string, std::string> values_;
};

std::vector<std::string> plan(const PlainFields& fields, const TagWish& wish, bool overwrites) {
    static const std::map<Kind, char> signs = {{Kind::added, '+'},
                                               {Kind::replaced, '~'},
                                               {Kind::removed, '-'},
                                               {Kind::kept, '='},
                                               {Kind::unchanged, '.'}};
    std::vector<std::string> lines;
    for (const TagChange& change : planTags(fields, wish, overwrites))
        lines.push_back(signs.at(change.kind) + (" " + change.field) + " " + change.before + ">" +
                        change.after);
    return lines;
}

const TagWish kWish = {125.98, "F#m"};

TEST(PlanTags, AddsWhatIsMissing) {
    EXPECT_THAT(plan({true, {}}, kWish, false),
                ElementsAre("+ tempo >126", "+ exact >125.98", "+ key >F#m"));
    EXPECT_THAT(plan({false, {}}, kWish, false), ElementsAre("+ tempo >125.98", "+ key >F#m"));
}

TEST(PlanTags, WritesNothingThatWasNotFound) {
    EXPECT_THAT(plan({true, {}}, {}, true), IsEmpty());
    EXPECT_THAT(plan({true, {{"key", "Am"}}}, {125.98, {}}, true),
                ElementsAre("+ tempo >126", "+ exact >125.98"));
}

TEST(PlanTags, KeepsAnotherTempoAndAddsNoneBesideIt) {
    EXPECT_THAT(plan({true, {{"tempo", "63"}}}, kWish, false),
                ElementsAre("= tempo 63>126", "+ key >F#m"));
    EXPECT_THAT(plan({true, {{"other tempo", "fast"}}}, {100.0, {}}, false),
                ElementsAre("= other tempo fast>100"));
    EXPECT_THAT(plan({true, {{"exact", "125.90"}}}, {125.98, {}}, false),
                ElementsAre("= exact 125.90>125.98"));
}

TEST(PlanTags, AddsTheExactTempoBesideTheWholeOneItRoundsTo) {
    EXPECT_THAT(plan({true, {{"tempo", "126"}}}, {125.98, {}}, false),
                ElementsAre(". tempo 126>126", "+ exact >125.98"));
    EXPECT_THAT(plan({false, {{"tempo", "126"}}}, {125.98, {}}, false),
                ElementsAre(". tempo 126>126"));
    EXPECT_THAT(plan({true, {{"tempo", "125.98"}}}, {125.98, {}}, false),
                ElementsAre(". tempo 125.98>125.98", "+ exact >125.98"));
}

TEST(PlanTags, ReplacesAllThatSaysOtherwiseWhenTold) {
    EXPECT_THAT(
        plan({true, {{"tempo", "63"}, {"other tempo", "63.0"}, {"other key", "Gbm"}}}, kWish, true),
        ElementsAre("~ tempo 63>126", "+ exact >125.98", "- other tempo 63.0>", "+ key >F#m",
                    "- other key Gbm>"));
}

TEST(PlanTags, KeepsAKeyUnderAnyName) {
    EXPECT_THAT(plan({true, {{"other key", "Gbm"}}}, {{}, "F#m"}, false),
                ElementsAre("= other key Gbm>F#m"));
    EXPECT_THAT(plan({true, {{"key", "F#m"}}}, {{}, "F#m"}, true), ElementsAre(". key F#m>F#m"));
}

}  // namespace
}  // namespace media
