// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <SQLiteCpp/Statement.h>

namespace catalogue {

/** Any bytes, for a parameter of a statement. */
inline void bindBytes(SQLite::Statement& statement, int index, const std::string& bytes) {
    statement.bind(index, bytes.data(), static_cast<int>(bytes.size()));
}

/** NULL for nothing. */
inline void bindReal(SQLite::Statement& statement, int index, const std::optional<double>& value) {
    if (value) {
        statement.bind(index, *value);
    } else {
        statement.bind(index);
    }
}

template <class Integer>
void bindInteger(SQLite::Statement& statement, int index, const std::optional<Integer>& value) {
    if (value) {
        statement.bind(index, static_cast<std::int64_t>(*value));
    } else {
        statement.bind(index);
    }
}

/** Makes a statement whose rows are read ready for the next values, also when something throws. */
class ResetAfter {
public:
    explicit ResetAfter(SQLite::Statement& statement) : statement_(statement) {}
    ~ResetAfter() { statement_.tryReset(); }
    ResetAfter(const ResetAfter&) = delete;
    ResetAfter& operator=(const ResetAfter&) = delete;

private:
    SQLite::Statement& statement_;
};

/** Executes a statement that gives no rows and makes it ready for the next values.
 *  @return how many rows it changed */
inline int execute(SQLite::Statement& statement) {
    const ResetAfter reset(statement);
    return statement.exec();
}

inline std::optional<double> realOf(const SQLite::Statement& statement, int column) {
    if (statement.isColumnNull(column)) return std::nullopt;
    return statement.getColumn(column).getDouble();
}

}  // namespace catalogue
