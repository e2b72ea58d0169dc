// SPDX-License-Identifier: MIT
#include "catalogue/correction/edits.h"

#include <array>
#include <utility>

namespace catalogue {

namespace {

constexpr std::array kNames = {
    std::pair(EditKind::bpm, "bpm"),
    std::pair(EditKind::twice, "double"),
    std::pair(EditKind::half, "halve"),
    std::pair(EditKind::threeToTwo, "three-to-two"),
    std::pair(EditKind::shiftHalf, "shift-half"),
    std::pair(EditKind::shiftMilliseconds, "shift-ms"),
    std::pair(EditKind::downbeat, "downbeat"),
    std::pair(EditKind::key, "key"),
};

bool takesBack(const Edit& edit, const Edit& earlier) {
    switch (edit.kind) {
    case EditKind::twice:
        return earlier.kind == EditKind::half;
    case EditKind::half:
        return earlier.kind == EditKind::twice;
    case EditKind::shiftHalf:
        return earlier.kind == EditKind::shiftHalf;
    case EditKind::shiftMilliseconds:
        return earlier.kind == EditKind::shiftMilliseconds && earlier.value + edit.value == 0.0;
    default:
        return false;
    }
}

/** Whether the edit makes one with the earlier, which becomes it. */
bool joins(const Edit& edit, Edit& earlier) {
    if (edit.kind != earlier.kind) return false;
    if (edit.kind == EditKind::key) earlier.value = edit.value;
    if (edit.kind == EditKind::shiftMilliseconds) earlier.value += edit.value;
    return edit.kind == EditKind::key || edit.kind == EditKind::shiftMilliseconds;
}

}  // namespace

const char* editName(EditKind kind) {
    for (const auto& [known, name] : kNames) {
        if (known == kind) return name;
    }
    return "";
}

std::optional<EditKind> editKindOf(std::string_view name) {
    for (const auto& [kind, known] : kNames) {
        if (name == known) return kind;
    }
    return std::nullopt;
}

std::vector<Edit> simplified(const std::vector<Edit>& edits) {
    std::vector<Edit> kept;
    for (const Edit& edit : edits) {
        if (!kept.empty() && takesBack(edit, kept.back())) {
            kept.pop_back();
        } else if (kept.empty() || !joins(edit, kept.back())) {
            kept.push_back(edit);
        }
    }
    return kept;
}

}  // namespace catalogue
