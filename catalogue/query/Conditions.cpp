// SPDX-License-Identifier: MIT
#include "catalogue/query/Conditions.h"

#include <algorithm>
#include <utility>

#include <SQLiteCpp/Statement.h>

#include "base/displayName.h"
#include "catalogue/folded.h"

namespace catalogue {

namespace {

/** The search index knows sequences of three letters. */
constexpr std::size_t kIndexedLetters = 3;

// No letter is beyond it.
constexpr const char* kLastLetter = "\xF4\x8F\xBF\xBF";

std::size_t lettersOf(const std::string& text) {
    std::size_t letters = 0;
    for (std::size_t i = 0; i < text.size(); ++letters)
        i += std::max<std::size_t>(base::utf8CharacterLength(text.substr(i)), 1);
    return letters;
}

/** As the index wants a text to be looked for as it is. */
std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char character : text) {
        if (character == '"') result += '"';
        result += character;
    }
    return result + '"';
}

std::int64_t flag(bool value) {
    return value ? 1 : 0;
}

/** One or two letters begin some of the index's sequences of three, unless they stand at the end of
 *  the title, the last that is searched. */
SqlPart shortTextSelection(const std::string& text) {
    SqlPart part;
    part.add("SELECT DISTINCT doc AS id FROM temp.search_sequences WHERE term >= ? AND term < ? "
             "UNION ALL ",
             text, text + kLastLetter);
    // Those that end with it; and those whose last letter but one it is, if it is one.
    part.add("SELECT id FROM tracks INDEXED BY tracks_by_last_letters WHERE "
             "substr(title_order, -2) >= ? AND substr(title_order, -2) < ?",
             text, text + kLastLetter);
    return part.add(" UNION ALL SELECT id FROM tracks INDEXED BY tracks_by_last_letter WHERE "
                    "substr(title_order, -1) = ?",
                    text);
}

SqlPart textSelection(const std::string& text) {
    if (lettersOf(text) < kIndexedLetters) return shortTextSelection(text);
    return SqlPart().add("SELECT rowid AS id FROM track_search WHERE search MATCH ?", quoted(text));
}

SqlPart tempoSelection(const TrackQuery& query) {
    SqlPart part;
    for (const BpmRange& range : query.bpm) {
        if (!part.isEmpty()) part.add(" UNION ALL ");
        part.add("SELECT id FROM tracks INDEXED BY tracks_by_bpm WHERE is_gone = ? AND bpm "
                 "BETWEEN ? AND ?",
                 flag(query.isGone), range.lowest, range.highest);
    }
    return part;
}

void addKeySelection(SqlPart& part, const TrackQuery& query) {
    if (!part.isEmpty()) part.add(" UNION ALL ");
    part.add("SELECT id FROM tracks INDEXED BY tracks_by_key WHERE is_gone = ? AND key IN (",
             flag(query.isGone));
    part.addList(query.keys).add(")");
}

SqlPart keySelection(const TrackQuery& query) {
    SqlPart part;
    if (query.bpm.empty()) addKeySelection(part, query);
    for (const BpmRange& range : query.bpm) {
        addKeySelection(part, query);
        part.add(" AND bpm BETWEEN ? AND ?", range.lowest, range.highest);
    }
    return part;
}

void addTempoCondition(SqlPart& part, const std::vector<BpmRange>& ranges) {
    if (ranges.empty()) return;
    // From the lowest of all to the highest, as an index can use it.
    const auto isLower = [](const BpmRange& a, const BpmRange& b) { return a.lowest < b.lowest; };
    const auto isLess = [](const BpmRange& a, const BpmRange& b) { return a.highest < b.highest; };
    part.add(" AND t.bpm BETWEEN ? AND ?",
             std::min_element(ranges.begin(), ranges.end(), isLower)->lowest,
             std::max_element(ranges.begin(), ranges.end(), isLess)->highest);
    if (ranges.size() == 1) return;
    part.add(" AND (0");
    for (const BpmRange& range : ranges)
        part.add(" OR t.bpm BETWEEN ? AND ?", range.lowest, range.highest);
    part.add(")");
}

struct Binder {
    SQLite::Statement& statement;
    int index;

    void operator()(std::int64_t value) const { statement.bind(index, value); }
    void operator()(double value) const { statement.bind(index, value); }
    void operator()(const std::string& value) const { statement.bind(index, value); }
};

}  // namespace

SqlPart& SqlPart::add(const SqlPart& part) {
    text_ += part.text_;
    values_.insert(values_.end(), part.values_.begin(), part.values_.end());
    return *this;
}

SqlPart& SqlPart::addList(const std::vector<int>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        text_ += i == 0 ? "?" : ", ?";
        values_.emplace_back(std::int64_t{values[i]});
    }
    return *this;
}

void SqlPart::bindTo(SQLite::Statement& statement) const {
    int index = 0;
    for (const auto& value : values_) std::visit(Binder{statement, ++index}, value);
}

SqlPart rowConditions(const TrackQuery& query) {
    SqlPart part;
    if (const std::string text = folded(query.text); !text.empty())
        part.add(" AND instr(t.search, ?) > 0", text);
    addTempoCondition(part, query.bpm);
    if (!query.keys.empty()) {
        part.add(" AND t.key IN (").addList(query.keys).add(")");
    }
    if (query.confidenceBelow) part.add(" AND t.confidence < ?", *query.confidenceBelow);
    if (query.isCorrected) part.add(" AND t.is_corrected = 1");
    if (query.except) part.add(" AND t.id <> ?", *query.except);
    return part;
}

std::vector<SqlPart> idSelections(const TrackQuery& query) {
    std::vector<SqlPart> selections;
    if (query.isCorrected)
        selections.push_back(
            SqlPart().add("SELECT id FROM tracks INDEXED BY tracks_corrected WHERE is_gone = ? AND "
                          "is_corrected = 1",
                          flag(query.isGone)));
    if (!query.keys.empty()) selections.push_back(keySelection(query));
    if (!query.bpm.empty() && query.keys.empty()) selections.push_back(tempoSelection(query));
    if (query.confidenceBelow)
        selections.push_back(
            SqlPart().add("SELECT id FROM tracks INDEXED BY tracks_by_confidence WHERE is_gone = ? "
                          "AND confidence < ?",
                          flag(query.isGone), *query.confidenceBelow));
    if (const std::string text = folded(query.text); !text.empty())
        selections.push_back(textSelection(text));
    return selections;
}

}  // namespace catalogue
