// SPDX-License-Identifier: MIT
#include "catalogue/query/TrackQuery.h"

#include <algorithm>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "catalogue/StoredTracks.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using base::ListedFailure;
using base::ListedTrack;
using testing::AnyOf;
using testing::Contains;
using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

using Order = TrackQuery::Order;

constexpr Order kOrders[] = {Order::path, Order::artist, Order::title,      Order::bpm,
                             Order::key,  Order::length, Order::confidence, Order::added};

/** Thirty thousand tracks, so that some conditions hold for few and others for many. Multiplying by
 *  numbers without a common divisor scatters the columns. */
constexpr const char* kFill = R"sql(
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 30000)
INSERT INTO tracks (id, path, size, modified_ns, audio_hash, container, codec, channels, file_rate,
    rate, format_changes, artist, title, frames, seconds, added_at, gone_at, artist_order,
    title_order, search, result_id, bpm, key, confidence, is_corrected)
SELECT i, CAST(printf('/m/%05d.mp3', i * 7919 % 30011) AS BLOB), i, 0, zeroblob(16), 'mp3', 'mp3',
    2, 44100, 44100, 0, '', '', 44100, 60 + i * 101 % 307, i * 31 % 1009,
    iif(i % 11 = 0, 1, NULL), printf('artist %d', i % 83), printf('title %d', i * 13 % 997),
    printf('/m/%05d.mp3', i * 7919 % 30011) || char(10) || printf('artist %d', i % 83)
        || char(10) || printf('title %d', i * 13 % 997),
    i, iif(i % 50 = 0, NULL, 60 + i * 17 % 12000 / 100.0), iif(i % 40 = 0, NULL, i * 5 % 24),
    iif(i % 60 = 0, NULL, i * 29 % 1000 / 1000.0), i % 700 = 0
FROM n)sql";

class Queries : public testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = std::make_unique<test::TemporaryFolder>();
        const std::string path = folder_->file("c.sqlite");
        catalogue_ = std::make_unique<Catalogue>(path, Catalogue::Access::create);
        catalogue_->database().exec(kFill);
    }
    static void TearDownTestSuite() {
        catalogue_.reset();
        folder_.reset();
    }

    static std::vector<ListedTrack> listed(const TrackQuery& query) {
        std::vector<ListedTrack> tracks;
        listTracks(*catalogue_, query, [&](const ListedTrack& track) { tracks.push_back(track); });
        return tracks;
    }

    static std::set<std::int64_t> ids(const TrackQuery& query) {
        std::set<std::int64_t> found;
        for (const ListedTrack& track : listed(query)) found.insert(track.id);
        return found;
    }

    /** What a plain reading of the whole table finds. */
    static std::set<std::int64_t> idsWhere(const std::string& condition) {
        std::set<std::int64_t> found;
        SQLite::Statement select(catalogue_->database(),
                                 "SELECT id FROM tracks WHERE " + condition);
        while (select.executeStep()) found.insert(select.getColumn(0).getInt64());
        return found;
    }

    static std::unique_ptr<test::TemporaryFolder> folder_;
    static std::unique_ptr<Catalogue> catalogue_;
};

std::unique_ptr<test::TemporaryFolder> Queries::folder_;
std::unique_ptr<Catalogue> Queries::catalogue_;

struct Case {
    TrackQuery query;
    std::string condition;
};

std::vector<Case> cases() {
    std::vector<Case> all(18);
    all[0].condition = "is_gone = 0";
    all[1].query.isGone = true;
    all[1].condition = "is_gone = 1";
    all[2].query.bpm = {{70.0, 70.5}};
    all[2].condition = "is_gone = 0 AND bpm BETWEEN 70 AND 70.5";
    all[3].query.bpm = {{61.0, 170.0}};
    all[3].condition = "is_gone = 0 AND bpm BETWEEN 61 AND 170";
    all[4].query.keys = {3};
    all[4].condition = "is_gone = 0 AND key = 3";
    all[5].query.keys = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    all[5].condition = "is_gone = 0 AND key <= 12";
    all[6].query.confidenceBelow = 0.01;
    all[6].condition = "is_gone = 0 AND confidence < 0.01";
    all[7].query.confidenceBelow = 0.9;
    all[7].condition = "is_gone = 0 AND confidence < 0.9";
    all[8].query.isCorrected = true;
    all[8].condition = "is_gone = 0 AND is_corrected = 1";
    all[9].query.text = "ARTIST 8";
    all[9].condition = "is_gone = 0 AND search LIKE '%artist 8%'";
    all[10].query.text = "title";
    all[10].condition = "is_gone = 0";
    all[11].query.text = "ti";
    all[11].condition = "is_gone = 0";
    all[12].query.keys = {3, 4};
    all[12].query.bpm = {{70.0, 75.0}, {140.0, 150.0}};
    all[12].query.text = "title 1";
    all[12].condition = "is_gone = 0 AND key IN (3, 4) AND (bpm BETWEEN 70 AND 75 OR bpm BETWEEN "
                        "140 AND 150) AND search LIKE '%title 1%'";
    all[13].query.bpm = {{61.0, 170.0}};
    all[13].query.confidenceBelow = 0.9;
    all[13].query.isGone = true;
    all[13].query.except = 11;
    all[13].condition = "is_gone = 1 AND bpm BETWEEN 61 AND 170 AND confidence < 0.9 AND id <> 11";
    // In the middle of few paths, in that of many, at the end of titles alone, and anywhere.
    all[14].query.text = "/3";
    all[14].query.bpm = {{70.0, 75.0}};
    all[14].condition = "is_gone = 0 AND bpm BETWEEN 70 AND 75 AND search LIKE '%/3%'";
    all[15].query.text = "7.";
    all[15].condition = "is_gone = 0 AND search LIKE '%7.%'";
    all[16].query.text = "91";
    all[16].condition = "is_gone = 0 AND search LIKE '%91%'";
    all[17].query.text = "8";
    all[17].condition = "is_gone = 0 AND search LIKE '%8%'";
    return all;
}

TEST_F(Queries, FindWhatAPlainReadingFinds) {
    for (Case& each : cases()) {
        const auto expected = idsWhere(each.condition);
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(ids(each.query), expected) << each.condition;
        each.query.order = Order::title;
        EXPECT_EQ(ids(each.query), expected) << each.condition;
    }
}

/** What an order compares; nothing comes first. */
std::tuple<std::string, double, double> rankOf(const ListedTrack& track, Order order) {
    switch (order) {
    case Order::path:
        return {track.path, 0, 0};
    case Order::bpm:
        return {"", track.bpm.value_or(-1), 0};
    case Order::key:
        return {"", track.key.value_or(-1), track.bpm.value_or(-1)};
    case Order::length:
        return {"", track.seconds, 0};
    case Order::confidence:
        return {"", track.confidence.value_or(-1), 0};
    default:
        // Their columns are not listed; the next test looks at them.
        return {};
    }
}

TEST_F(Queries, AreInOrderBothWaysHoweverTheyAreFound) {
    std::vector<Case> all = cases();
    for (const std::size_t which : {1U, 2U, 9U, 12U, 13U, 5U}) {
        Case& each = all[which];
        for (const Order order : kOrders) {
            each.query.order = order;
            each.query.isReversed = false;
            const std::vector<ListedTrack> forward = listed(each.query);
            for (std::size_t i = 1; i < forward.size(); ++i)
                ASSERT_LE(rankOf(forward[i - 1], order), rankOf(forward[i], order));
            each.query.isReversed = true;
            std::vector<ListedTrack> backward = listed(each.query);
            std::reverse(backward.begin(), backward.end());
            ASSERT_EQ(forward.size(), backward.size());
            for (std::size_t i = 0; i < forward.size(); ++i)
                ASSERT_EQ(forward[i].id, backward[i].id);
        }
    }
}

TEST_F(Queries, AreInTheOrderOfFoldedArtistsAndTitles) {
    test::TemporaryFolder folder;
    Catalogue catalogue(folder.file("c"), Catalogue::Access::create);
    std::vector<Analysed> tracks;
    int sound = 0;
    for (const char* artist : {"Zebra", "élan", "Eland", "abba", "Ärger"}) {
        tracks.push_back(test::analysedTrack(std::string("/") + artist, ++sound));
        tracks.back().track.format.tags.artist = artist;
    }
    test::store(catalogue, tracks);
    TrackQuery query;
    query.order = Order::artist;
    std::vector<std::string> artists;
    listTracks(catalogue, query,
               [&](const ListedTrack& track) { artists.push_back(track.artist); });
    EXPECT_THAT(artists, ElementsAre("abba", "Ärger", "élan", "Eland", "Zebra"));
    query.text = "ÉL";
    artists.clear();
    listTracks(catalogue, query,
               [&](const ListedTrack& track) { artists.push_back(track.artist); });
    EXPECT_THAT(artists, ElementsAre("élan", "Eland"));
}

// Words of two characters are usual in Chinese and Japanese, and names of two letters anywhere.
TEST_F(Queries, FindOneAndTwoCharactersWhereverTheyStand) {
    test::TemporaryFolder folder;
    Catalogue catalogue(folder.file("c"), Catalogue::Access::create);
    std::vector<Analysed> tracks;
    const std::pair<const char*, const char*> names[] = {
        {"大日本", "x"}, {"a", "日本"}, {"b", "日本の歌"}, {"c", "歌、日本"}, {"The U2 Four", "d"}};
    for (const auto& [artist, title] : names) {
        tracks.push_back(test::analysedTrack("/" + std::to_string(tracks.size()),
                                             static_cast<int>(tracks.size()) + 1));
        tracks.back().track.format.tags = {artist, title};
    }
    test::store(catalogue, tracks);
    const auto found = [&](const char* text) {
        TrackQuery query;
        query.text = text;
        std::string paths;
        listTracks(catalogue, query, [&](const ListedTrack& track) { paths += track.path; });
        return paths;
    };
    EXPECT_EQ(found("日本"), "/0/1/2/3");
    EXPECT_EQ(found("本"), "/0/1/2/3");
    EXPECT_EQ(found("歌"), "/2/3");
    EXPECT_EQ(found("の"), "/2");
    EXPECT_EQ(found("u2"), "/4");
    EXPECT_EQ(found("日歌"), "");
}

TEST_F(Queries, StopAtTheirLimit) {
    TrackQuery query;
    for (const std::int64_t limit : {0, 1, 7}) {
        query.limit = limit;
        EXPECT_EQ(listed(query).size(), static_cast<std::size_t>(limit));
    }
}

// Whatever is typed is a value and never a part of a statement.
TEST_F(Queries, LookForEveryTextAsItIs) {
    for (const char* text :
         {"' OR 1=1 --", "\"", "\"\"\"", "a\" OR \"b", "*", "title*", "%", "_tit", "NEAR(title)",
          "title -artist", "search:title", "\\", "^title", "(("}) {
        TrackQuery query;
        query.text = text;
        EXPECT_THAT(listed(query), testing::IsEmpty()) << text;
    }
    EXPECT_EQ(test::valueOf(*catalogue_, "SELECT count(*) FROM tracks"), "30000");
}

int note(unsigned /*kind*/, void* statements, void* statement, void* /*text*/) {
    char* sql = sqlite3_expanded_sql(static_cast<sqlite3_stmt*>(statement));
    static_cast<std::vector<std::string>*>(statements)->emplace_back(sql);
    sqlite3_free(sql);
    return 0;
}

/** The plans of all statements that were executed meanwhile. */
template <class Work>
std::vector<std::string> plansOf(const Catalogue& catalogue, const Work& work) {
    std::vector<std::string> statements;
    sqlite3* handle = catalogue.database().getHandle();
    sqlite3_trace_v2(handle, SQLITE_TRACE_STMT, note, &statements);
    work();
    sqlite3_trace_v2(handle, 0, nullptr, nullptr);
    std::vector<std::string> plans;
    for (const std::string& statement : statements) {
        // What the search index does inside itself is told as a comment.
        if (statement.starts_with("--")) continue;
        SQLite::Statement explain(catalogue.database(), "EXPLAIN QUERY PLAN " + statement);
        while (explain.executeStep()) plans.push_back(explain.getColumn(3).getString());
    }
    return plans;
}

TEST_F(Queries, NeverScanTheTable) {
    for (Case& each : cases()) {
        for (const Order order : kOrders) {
            each.query.order = order;
            each.query.limit = 20;
            const auto plans = plansOf(*catalogue_, [&] { listed(each.query); });
            EXPECT_THAT(plans, Contains(HasSubstr("SEARCH t USING")));
            EXPECT_THAT(
                plans, Each(Not(AnyOf("SCAN t", StartsWith("SCAN t "), StartsWith("SCAN tracks")))))
                << each.condition;
        }
    }
    const auto plans = plansOf(
        *catalogue_, [&] { listFailures(*catalogue_, false, 20, [](const ListedFailure&) {}); });
    EXPECT_THAT(plans, ElementsAre("SCAN failures USING INDEX failures_of_music"));
}

// A list without an end does not gather its tracks first.
TEST_F(Queries, SortOnlyWhatIsFew) {
    int sorted = 0;
    for (Case& each : cases()) {
        each.query.order = Order::title;
        const auto plans = plansOf(*catalogue_, [&] { listed(each.query); });
        const bool sorts =
            std::find(plans.begin(), plans.end(), "USE TEMP B-TREE FOR ORDER BY") != plans.end();
        if (sorts) {
            ++sorted;
            EXPECT_LE(idsWhere(each.condition).size(), 10000U) << each.condition;
        }
    }
    EXPECT_GE(sorted, 5);
    EXPECT_LE(sorted, 12);
}

TEST_F(Queries, ListFailuresOfMusicAlone) {
    test::TemporaryFolder folder;
    Catalogue catalogue(folder.file("c"), Catalogue::Access::create);
    {
        Scan scan(catalogue, {"{}", false, false});
        scan.settle();
        scan.putFailure("/b", {}, {FailureKind::crashed, "crashed"});
        scan.putFailure("/picture", {}, {FailureKind::notAudio, "is no audio"});
        scan.putFailure("/a", {}, {FailureKind::timeLimit, "took too long"});
    }
    std::vector<std::string> told;
    const auto tell = [&](const ListedFailure& failure) {
        told.push_back(failure.path + " " + failure.kind + " " + failure.reason);
    };
    listFailures(catalogue, false, std::nullopt, tell);
    listFailures(catalogue, true, 1, tell);
    EXPECT_THAT(told, ElementsAre("/a time-limit took too long", "/b crashed crashed",
                                  "/b crashed crashed"));
}

// On the wheel: 8A; 9A, an hour on, is E minor; 7A is D minor; 8B is C major.
TEST(Compatible, AreTheKeyItsFifthsAndItsRelative) {
    EXPECT_THAT(compatibleKeys(12), UnorderedElementsAre(12, 19, 17, 3));
    // 1B, B major: 2B F#, 12B E, 1A G# minor.
    EXPECT_THAT(compatibleKeys(2), UnorderedElementsAre(2, 9, 7, 23));
}

TEST(Compatible, KeysAreSoBothWays) {
    for (int key = 0; key < 24; ++key) {
        for (const int other : compatibleKeys(key)) {
            EXPECT_TRUE(other >= 0 && other < 24);
            EXPECT_THAT(compatibleKeys(other), Contains(key));
        }
    }
}

TEST(Compatible, TemposAreNearTheTempoItsHalfAndItsDouble) {
    const auto ranges = compatibleTempos(100.0, 5.0);
    ASSERT_EQ(ranges.size(), 3U);
    EXPECT_THAT(ranges[0].lowest, DoubleNear(95.0, 1e-9));
    EXPECT_THAT(ranges[0].highest, DoubleNear(105.0, 1e-9));
    EXPECT_THAT(ranges[1].lowest, DoubleNear(47.5, 1e-9));
    EXPECT_THAT(ranges[2].highest, DoubleNear(210.0, 1e-9));
}

}  // namespace
}  // namespace catalogue
