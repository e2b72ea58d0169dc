// SPDX-License-Identifier: MIT
// Two ways lead to an ordered list. If one of the conditions holds for few tracks, their index finds
// them, and they are sorted. If every condition holds for many, the index of the order is walked,
// and rows that do not meet the conditions are passed over: enough do. Both take little memory, and
// neither looks at every track before the first is shown.
#include "catalogue/query/TrackQuery.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

#include "catalogue/query/Conditions.h"
#include "catalogue/sqlBinding.h"
#include "catalogue/sqliteGuard.h"

namespace catalogue {

namespace {

/** Sorting so many takes some hundredths of a second. */
constexpr std::int64_t kFew = 10000;

constexpr int kNotes = 12;
constexpr int kFifth = 7;
constexpr int kMinorThird = 3;
constexpr double kPercent = 100.0;

// No track has this key, and none a tempo in this range.
constexpr int kNoKey = -1;
constexpr BpmRange kNoTempo = {1.0, 0.0};

struct OrderSql {
    const char* index;
    const char* ascending;
    const char* descending;
};

/** Of the conditions so far, which may be none, what also meets the further ones. */
void narrow(std::vector<int>& keys, std::vector<int> further) {
    if (!keys.empty())
        std::erase_if(further, [&](int key) {
            return std::find(keys.begin(), keys.end(), key) == keys.end();
        });
    keys = further.empty() ? std::vector{kNoKey} : further;
}

void narrow(std::vector<BpmRange>& tempos, const std::vector<BpmRange>& further) {
    const std::vector<BpmRange> before = tempos.empty() ? further : tempos;
    tempos.clear();
    for (const BpmRange& one : before) {
        for (const BpmRange& other : further) {
            const BpmRange both = {std::max(one.lowest, other.lowest),
                                   std::min(one.highest, other.highest)};
            if (both.lowest <= both.highest) tempos.push_back(both);
        }
    }
    if (tempos.empty()) tempos = {kNoTempo};
}

OrderSql orderSql(TrackQuery::Order order) {
    switch (order) {
    case TrackQuery::Order::artist:
        return {"tracks_by_artist", "t.artist_order, t.title_order, t.id",
                "t.artist_order DESC, t.title_order DESC, t.id DESC"};
    case TrackQuery::Order::title:
        return {"tracks_by_title", "t.title_order, t.artist_order, t.id",
                "t.title_order DESC, t.artist_order DESC, t.id DESC"};
    case TrackQuery::Order::bpm:
        return {"tracks_by_bpm", "t.bpm, t.key, t.confidence, t.id",
                "t.bpm DESC, t.key DESC, t.confidence DESC, t.id DESC"};
    case TrackQuery::Order::key:
        return {"tracks_by_key", "t.key, t.bpm, t.confidence, t.id",
                "t.key DESC, t.bpm DESC, t.confidence DESC, t.id DESC"};
    case TrackQuery::Order::length:
        return {"tracks_by_length", "t.seconds, t.id", "t.seconds DESC, t.id DESC"};
    case TrackQuery::Order::confidence:
        return {"tracks_by_confidence", "t.confidence, t.bpm, t.key, t.id",
                "t.confidence DESC, t.bpm DESC, t.key DESC, t.id DESC"};
    case TrackQuery::Order::added:
        return {"tracks_by_added", "t.added_at, t.id", "t.added_at DESC, t.id DESC"};
    case TrackQuery::Order::path:
        break;
    }
    return {"tracks_by_path", "t.path, t.id", "t.path DESC, t.id DESC"};
}

using Ids = std::vector<std::int64_t>;

/** What is selected, each id once; nothing when that is more than the most. */
std::optional<Ids> idsOf(const Catalogue& catalogue, const SqlPart& selection, std::int64_t most) {
    // Many ids come more than once, few of them more than twice.
    const std::int64_t limit = 2 * most + 1;
    SqlPart limited;
    limited.add("SELECT id FROM (").add(selection).add(") LIMIT ?", limit);
    SQLite::Statement statement(catalogue.database(), limited.text());
    limited.bindTo(statement);
    Ids ids;
    while (statement.executeStep()) ids.push_back(statement.getColumn(0).getInt64());
    if (std::ssize(ids) == limit) return std::nullopt;
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    if (static_cast<std::int64_t>(ids.size()) > most) return std::nullopt;
    return ids;
}

/** The tracks of the condition that holds for the fewest; nothing when all hold for many. */
std::optional<Ids> fewestOf(const Catalogue& catalogue, const TrackQuery& query) {
    std::optional<Ids> fewest;
    for (const SqlPart& selection : idSelections(query)) {
        const std::int64_t most = fewest ? std::ssize(*fewest) : kFew;
        if (auto ids = idsOf(catalogue, selection, most)) fewest = std::move(ids);
    }
    return fewest;
}

/** As SQLite's json_each() takes them. */
std::string listText(const Ids& ids) {
    return fmt::format("[{}]", fmt::join(ids, ","));
}

constexpr const char* kListed = "SELECT t.id, t.path, t.artist, t.title, t.seconds, t.bpm, t.key, "
                                "t.confidence, t.is_corrected, t.is_gone, t.result_id FROM ";

/** @param columns  "SELECT … FROM ", of a row t of tracks */
SqlPart statementOf(const Catalogue& catalogue, const TrackQuery& query, const char* columns) {
    if (!query.text.empty()) catalogue.database().exec(kSearchSequences);
    const OrderSql order = orderSql(query.order);
    SqlPart sql;
    sql.add(columns);
    if (const auto few = fewestOf(catalogue, query)) {
        sql.add("json_each(?) chosen CROSS JOIN tracks t ON t.id = chosen.value", listText(*few));
    } else {
        sql.add("tracks t INDEXED BY ").add(order.index);
    }
    sql.add(" WHERE t.is_gone = ?", std::int64_t{query.isGone ? 1 : 0});
    sql.add(rowConditions(query));
    sql.add(" ORDER BY ").add(query.isReversed ? order.descending : order.ascending);
    if (query.limit) sql.add(" LIMIT ?", *query.limit);
    return sql;
}

base::ListedTrack columnsOf(const SQLite::Statement& row) {
    base::ListedTrack track;
    track.id = row.getColumn(0).getInt64();
    track.path = row.getColumn(1).getString();
    track.artist = row.getColumn(2).getString();
    track.title = row.getColumn(3).getString();
    track.seconds = row.getColumn(4).getDouble();
    track.bpm = realOf(row, 5);
    if (!row.isColumnNull(6)) track.key = row.getColumn(6).getInt();
    track.confidence = realOf(row, 7);
    track.isCorrected = row.getColumn(8).getInt() != 0;
    track.isGone = row.getColumn(9).getInt() != 0;
    return track;
}

/** Finds what the confidence of a listed track is of. It is the smaller one of two, to the bit, and
 *  a corrected key is certain: so it is the key's where it equals the one that was found of the
 *  key, and else the tempo's. Asked of the rows that are shown alone: the rows that are sorted
 *  may be thousands. */
class LeastSure {
public:
    explicit LeastSure(const Catalogue& catalogue)
        : statement_(catalogue.database(), "SELECT tempo_confidence IS NULL OR key_confidence = ?2 "
                                           "FROM results WHERE id = ?1") {}

    /** @param row  of kListed */
    std::optional<base::ListedTrack::Part> of(const SQLite::Statement& row) {
        if (row.isColumnNull(7) || row.isColumnNull(10)) return std::nullopt;
        const ResetAfter reset(statement_);
        statement_.bind(1, row.getColumn(10).getInt64());
        statement_.bind(2, row.getColumn(7).getDouble());
        if (!statement_.executeStep()) return std::nullopt;
        using Part = base::ListedTrack::Part;
        return statement_.getColumn(0).getInt() != 0 ? Part::key : Part::tempo;
    }

private:
    SQLite::Statement statement_;
};

base::ListedTrack trackOf(const SQLite::Statement& row, LeastSure& leastSure) {
    base::ListedTrack track = columnsOf(row);
    track.leastSure = leastSure.of(row);
    return track;
}

}  // namespace

std::map<std::string, TrackQuery::Order> orders() {
    using Order = TrackQuery::Order;
    return {{"path", Order::path},   {"artist", Order::artist},
            {"title", Order::title}, {"bpm", Order::bpm},
            {"key", Order::key},     {"length", Order::length},
            {"added", Order::added}, {"confidence", Order::confidence}};
}

void listTracks(const Catalogue& catalogue, const TrackQuery& query,
                const std::function<void(const base::ListedTrack&)>& show) {
    guarded(catalogue.path(), [&] {
        const SqlPart sql = statementOf(catalogue, query, kListed);
        SQLite::Statement statement(catalogue.database(), sql.text());
        sql.bindTo(statement);
        LeastSure leastSure(catalogue);
        while (statement.executeStep()) show(trackOf(statement, leastSure));
    });
}

std::vector<std::int64_t> listIds(const Catalogue& catalogue, const TrackQuery& query) {
    return guarded(catalogue.path(), [&] {
        const SqlPart sql = statementOf(catalogue, query, "SELECT t.id FROM ");
        SQLite::Statement statement(catalogue.database(), sql.text());
        sql.bindTo(statement);
        Ids ids;
        while (statement.executeStep()) ids.push_back(statement.getColumn(0).getInt64());
        return ids;
    });
}

void listChosen(const Catalogue& catalogue, const std::vector<std::int64_t>& ids,
                const std::function<void(const base::ListedTrack&)>& show) {
    guarded(catalogue.path(), [&] {
        const std::string sql = fmt::format("{}tracks t WHERE t.id = ?", kListed);
        SQLite::Statement statement(catalogue.database(), sql);
        LeastSure leastSure(catalogue);
        for (const std::int64_t id : ids) {
            const ResetAfter reset(statement);
            statement.bind(1, id);
            if (statement.executeStep()) show(trackOf(statement, leastSure));
        }
    });
}

void listFailures(const Catalogue& catalogue, bool isReversed, std::optional<std::int64_t> limit,
                  const std::function<void(const base::ListedFailure&)>& show) {
    guarded(catalogue.path(), [&] {
        SqlPart sql;
        sql.add("SELECT path, kind, reason, attempts FROM failures WHERE kind <> 'not-audio' "
                "ORDER BY path");
        if (isReversed) sql.add(" DESC");
        if (limit) sql.add(" LIMIT ?", *limit);
        SQLite::Statement statement(catalogue.database(), sql.text());
        sql.bindTo(statement);
        while (statement.executeStep())
            show({statement.getColumn(0).getString(), statement.getColumn(1).getString(),
                  statement.getColumn(2).getString(), statement.getColumn(3).getInt64()});
    });
}

void narrowToCompatible(TrackQuery& query, std::optional<int> key, std::optional<double> bpm,
                        double percent) {
    if (key) narrow(query.keys, compatibleKeys(*key));
    if (bpm) narrow(query.bpm, compatibleTempos(*bpm, percent));
}

std::vector<int> compatibleKeys(int key) {
    const bool isMinor = key >= kNotes;
    const int tonic = key % kNotes;
    const int mode = isMinor ? kNotes : 0;
    const int relative =
        isMinor ? (tonic + kMinorThird) % kNotes : (tonic - kMinorThird + kNotes) % kNotes + kNotes;
    return {key, (tonic + kFifth) % kNotes + mode, (tonic - kFifth + kNotes) % kNotes + mode,
            relative};
}

std::vector<BpmRange> compatibleTempos(double bpm, double percent) {
    std::vector<BpmRange> ranges;
    for (const double multiple : {1.0, 0.5, 2.0}) {
        const double around = bpm * multiple;
        ranges.push_back(
            {around * (1.0 - percent / kPercent), around * (1.0 + percent / kPercent)});
    }
    return ranges;
}

}  // namespace catalogue
