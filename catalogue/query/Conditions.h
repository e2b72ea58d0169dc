// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "catalogue/query/TrackQuery.h"

namespace SQLite {
class Statement;
}

namespace catalogue {

/** A part of a statement: constant text with one '?' for each value. Nothing that anybody typed is
 *  ever part of the text. */
class SqlPart {
public:
    using Value = std::variant<std::int64_t, double, std::string>;

    /** @param values  integers of 64 bits, reals and texts */
    template <class... Values>
    SqlPart& add(const char* text, const Values&... values) {
        text_ += text;
        (values_.emplace_back(values), ...);
        return *this;
    }
    SqlPart& add(const SqlPart& part);

    /** So many '?' with commas between them. */
    SqlPart& addList(const std::vector<int>& values);

    bool isEmpty() const { return text_.empty(); }
    const std::string& text() const { return text_; }
    void bindTo(SQLite::Statement& statement) const;

private:
    std::string text_;
    std::vector<Value> values_;
};

/** The conditions of a query on a row t of tracks, each beginning with AND. */
SqlPart rowConditions(const TrackQuery& query);

/** Makes what the selections look through beside the tables of the catalogue. */
constexpr const char* kSearchSequences =
    "CREATE VIRTUAL TABLE IF NOT EXISTS temp.search_sequences USING fts5vocab (main, "
    "track_search, instance)";

/** The ways in which an index finds the tracks that meet one of the conditions, or two: each
 *  selects ids, some perhaps more than once. */
std::vector<SqlPart> idSelections(const TrackQuery& query);

}  // namespace catalogue
