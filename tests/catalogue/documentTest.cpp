// SPDX-License-Identifier: MIT
// What docs/catalogue.md says is so.
#include <sstream>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "catalogue/StoredTracks.h"
#include "catalogue/blobCodecs.h"
#include "catalogue/correction/Corrections.h"
#include "catalogue/schema.h"
#include "support/TemporaryFolder.h"

namespace catalogue {
namespace {

using testing::HasSubstr;

class CatalogueDocument : public testing::Test {
protected:
    CatalogueDocument() {
        test::store(catalogue_,
                    {test::analysedTrack("/music/a.mp3", 1), test::analysedTrack("/copy", 1)});
        Corrections(catalogue_).add(1, {EditKind::key, 3.0});
        Scan scan(catalogue_, {"{}", false, false});
        scan.settle();
        scan.putFailure("/b", {}, {FailureKind::damaged, "is empty"});
    }

    /** Lines that are set off by four spaces, those between blank lines as one. */
    std::vector<std::string> blocks() const {
        std::vector<std::string> found(1);
        std::istringstream lines(document_);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("    ")) {
                found.back() += line.substr(4) + '\n';
            } else if (!found.back().empty()) {
                found.emplace_back();
            }
        }
        return found;
    }

    /** Where the heading begins that names a table. */
    std::size_t headingOf(const std::string& table) const {
        std::size_t begin = document_.find("\n### ");
        while (begin != std::string::npos) {
            const std::size_t end = document_.find('\n', begin + 1);
            if (document_.substr(begin, end - begin).find("`" + table + "`") != std::string::npos)
                return end;
            begin = document_.find("\n### ", end);
        }
        return begin;
    }

    std::string document_ = test::readFile(BEATATLAS_SOURCE "/docs/catalogue.md");
    test::TemporaryFolder folder_;
    Catalogue catalogue_{folder_.file("c.sqlite"), Catalogue::Access::create};
};

TEST_F(CatalogueDocument, NamesEveryTableAndColumn) {
    SQLite::Statement tables(
        catalogue_.database(),
        "SELECT m.name, c.name FROM sqlite_schema m, pragma_table_xinfo("
        "m.name) c WHERE m.type = 'table' AND m.name NOT LIKE 'track_search%'");
    int columns = 0;
    while (tables.executeStep()) {
        ++columns;
        const std::string table = tables.getColumn(0).getString();
        const std::size_t begin = headingOf(table);
        ASSERT_NE(begin, std::string::npos) << table;
        const std::size_t end = document_.find("\n### ", begin);
        EXPECT_THAT(document_.substr(begin, end - begin),
                    HasSubstr("`" + tables.getColumn(1).getString() + "`"))
            << table;
    }
    EXPECT_EQ(columns, 26 + 2 + 19 + 2 + 4 + 5 + 8 + 8);
}

TEST_F(CatalogueDocument, NamesTheVersion) {
    EXPECT_THAT(document_, HasSubstr(fmt::format("schema, {}.", kSchemaVersion)));
    EXPECT_THAT(document_, HasSubstr(fmt::format("0x{:X}", kApplicationId)));
}

TEST_F(CatalogueDocument, ShowsQueriesThatFindSomething) {
    catalogue_.database().exec("UPDATE scan_progress SET ended_at = NULL");
    int queries = 0;
    for (const std::string& block : blocks()) {
        if (!block.starts_with("SELECT")) continue;
        ++queries;
        SQLite::Statement query(catalogue_.database(), block);
        EXPECT_TRUE(query.executeStep()) << block;
    }
    EXPECT_EQ(queries, 9);
}

std::string hexadecimal(const std::string& blob) {
    std::string text;
    for (const char byte : blob)
        text += fmt::format("{}{:02X}", text.empty() ? "" : " ", static_cast<unsigned char>(byte));
    return text;
}

TEST_F(CatalogueDocument, ShowsBlobsAsTheyAre) {
    std::vector<beatatlas::track::Beat> beats;
    for (const auto& [frame, number] : {std::pair(4410, 4), {26460, 1}, {48510, 2}})
        beats.push_back({frame / 44100.0, 120.0, frame, number});
    EXPECT_THAT(document_, HasSubstr("\n    " + hexadecimal(encodeBeats(beats, 44100)) + "\n"));
    EXPECT_THAT(document_,
                HasSubstr("\n    " + hexadecimal(encodeWave({{31.0F, 0}, {4.0F, 7}})) + "\n"));
    EXPECT_THAT(document_, HasSubstr("\n    " + hexadecimal(encodeWave({{8000.0F, 3}})) + "\n"));
}

}  // namespace
}  // namespace catalogue
