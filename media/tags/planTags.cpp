// SPDX-License-Identifier: MIT
#include "media/tags/planTags.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <functional>
#include <system_error>

#include "media/tags/tagText.h"

namespace media {

namespace {

using base::TagChange;

constexpr double kHalfOfLastPlace = 0.005;

/** Fields that tell the same thing. */
struct Group {
    std::vector<std::pair<std::string, std::string>> own;  ///< to write: names and values
    std::vector<std::string> others;
    std::function<bool(const std::string&)> agrees;  ///< whether a value says what is wished
};

std::string twoPlaces(double bpm) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", bpm);
    return text;
}

/** @return nothing when the text is more than a number */
std::optional<double> numberOf(const std::string& text) {
    double number = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    if (failure != std::errc() || stop != end || !std::isfinite(number)) return std::nullopt;
    return number;
}

bool saysTempo(const std::string& text, double bpm) {
    const auto number = numberOf(text);
    return number && (*number == std::round(bpm) || std::abs(*number - bpm) < kHalfOfLastPlace);
}

void addNames(Group& group, const std::vector<std::string>& names, const std::string& value) {
    if (names.empty()) return;
    group.own.emplace_back(names.front(), value);
    group.others.insert(group.others.end(), names.begin() + 1, names.end());
}

Group tempoGroup(const TagFields& fields, double bpm) {
    Group group;
    const auto exact = fields.names(TagMeaning::exactTempo);
    const std::string whole = std::to_string(std::lround(bpm));
    addNames(group, fields.names(TagMeaning::tempo), exact.empty() ? twoPlaces(bpm) : whole);
    addNames(group, exact, twoPlaces(bpm));
    group.agrees = [bpm](const std::string& text) { return saysTempo(text, bpm); };
    return group;
}

Group keyGroup(const TagFields& fields, const std::string& key) {
    Group group;
    addNames(group, fields.names(TagMeaning::key), key);
    group.agrees = [key](const std::string& text) { return text == key; };
    return group;
}

bool anyDisagrees(const TagFields& fields, const Group& group) {
    const auto disagrees = [&](const std::string& name) {
        const auto value = fields.value(name);
        return value && !group.agrees(*value);
    };
    return std::any_of(group.others.begin(), group.others.end(), disagrees) ||
           std::any_of(group.own.begin(), group.own.end(),
                       [&](const auto& field) { return disagrees(field.first); });
}

void keepAll(const TagFields& fields, const Group& group, std::vector<TagChange>& changes) {
    const auto keep = [&](const std::string& name, const std::string& wished) {
        if (const auto value = fields.value(name))
            changes.push_back({TagChange::Kind::kept, name, *value, wished});
    };
    for (const auto& [name, value] : group.own) keep(name, value);
    for (const std::string& name : group.others) keep(name, group.own.front().second);
}

TagChange changeOf(const std::string& name, const std::optional<std::string>& before,
                   const std::string& after) {
    if (!before) return {TagChange::Kind::added, name, "", after};
    const bool isSame = *before == after;
    return {isSame ? TagChange::Kind::unchanged : TagChange::Kind::replaced, name, *before, after};
}

void settle(const TagFields& fields, const Group& group, bool overwrites,
            std::vector<TagChange>& changes) {
    if (!overwrites && anyDisagrees(fields, group)) return keepAll(fields, group, changes);
    for (const auto& [name, value] : group.own) {
        const auto before = fields.value(name);
        const bool stays = before && !overwrites;
        changes.push_back(changeOf(name, before, stays ? *before : value));
    }
    if (!overwrites) return;
    for (const std::string& name : group.others) {
        if (const auto value = fields.value(name))
            changes.push_back({TagChange::Kind::removed, name, *value, ""});
    }
}

}  // namespace

std::vector<TagChange> planTags(const TagFields& fields, const TagWish& wish, bool overwrites) {
    std::vector<TagChange> changes;
    if (wish.bpm) settle(fields, tempoGroup(fields, *wish.bpm), overwrites, changes);
    if (wish.key) settle(fields, keyGroup(fields, *wish.key), overwrites, changes);
    return changes;
}

}  // namespace media
