// SPDX-License-Identifier: MIT
// Filters of a catalogue: any text, ranges of any bits, keys and limits of any size, every order.
// Whatever is asked for, what is listed meets the conditions, and the order changes nothing else.
#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "FuzzInput.h"
#include "FuzzersRoundingMode.h"
#include "catalogue/Catalogue.h"
#include "catalogue/folded.h"
#include "catalogue/query/TrackQuery.h"
#include "output/KeyName.h"
#include "output/list/ListWriter.h"
#include "require.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace beatatlas::fuzz;
using base::ListedTrack;
using catalogue::TrackQuery;

constexpr int kMostRanges = 4;
constexpr int kMostKeys = 30;
constexpr int kMostLetters = 40;

constexpr const char* kFill = R"sql(
WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 200)
INSERT INTO tracks (path, size, modified_ns, audio_hash, container, codec, channels, file_rate,
    rate, format_changes, artist, title, frames, seconds, added_at, gone_at, artist_order,
    title_order, search, bpm, key, confidence, is_corrected)
SELECT CAST(printf('/m/%03d', i) AS BLOB) || iif(i % 9 = 0, x'FF0A', x''), i, 0, zeroblob(16),
    'mp3', 'mp3', 2, 44100, 44100, 0, printf('a, "%d"', i % 7), printf('t %d', i % 13), 44100,
    i * 31 % 97, i, iif(i % 11 = 0, 1, NULL), printf('a, "%d"', i % 7), printf('t %d', i % 13),
    printf('/m/%03d a, "%d" t %d', i, i % 7, i % 13), iif(i % 10 = 0, NULL, 60 + i),
    iif(i % 8 = 0, NULL, i % 24), iif(i % 6 = 0, NULL, i % 50 / 50.0), i % 5 = 0
FROM n)sql";

class Scratch {
public:
    Scratch() : catalogue_(folder_.file("c.sqlite"), catalogue::Catalogue::Access::create) {
        catalogue_.database().exec(kFill);
    }
    const catalogue::Catalogue& catalogue() const { return catalogue_; }

private:
    test::TemporaryFolder folder_;
    catalogue::Catalogue catalogue_;
};

std::string textOf(FuzzInput& input) {
    static const char* const kLikely[] = {"/m/0", "a, \"", "t 1", "a", "T", "\"", "' OR 1 --", "*"};
    if (input.flag()) return input.oneOf(kLikely);
    std::string text;
    for (int length = input.between(0, kMostLetters); length > 0; --length)
        text += static_cast<char>(input.byte());
    return text;
}

double realOf(FuzzInput& input) {
    return input.flag() ? input.between(0, 255) : static_cast<double>(input.anyFloat());
}

TrackQuery queryOf(FuzzInput& input) {
    TrackQuery query;
    const std::uint8_t parts = input.byte();
    if ((parts & 1) != 0) query.text = textOf(input);
    if ((parts & 2) != 0) {
        for (int count = input.between(0, kMostRanges); count > 0; --count) {
            const double lowest = realOf(input);
            query.bpm.push_back({lowest, realOf(input)});
        }
    }
    if ((parts & 4) != 0) {
        for (int count = input.between(0, kMostKeys); count > 0; --count)
            query.keys.push_back(input.flag() ? input.between(0, 23) : input.anyInt());
    }
    if ((parts & 8) != 0) query.confidenceBelow = realOf(input);
    query.isCorrected = (parts & 16) != 0;
    query.isGone = (parts & 32) != 0;
    query.isReversed = (parts & 64) != 0;
    if ((parts & 128) != 0) query.except = input.between(0, 255);
    return query;
}

bool meets(const ListedTrack& track, const TrackQuery& query) {
    const auto isIn = [&](const catalogue::BpmRange& range) {
        return track.bpm && *track.bpm >= range.lowest && *track.bpm <= range.highest;
    };
    if (!query.bpm.empty() && std::none_of(query.bpm.begin(), query.bpm.end(), isIn)) return false;
    if (!query.keys.empty() && (!track.key || std::find(query.keys.begin(), query.keys.end(),
                                                        *track.key) == query.keys.end()))
        return false;
    if (query.confidenceBelow && !(track.confidence && *track.confidence < *query.confidenceBelow))
        return false;
    return (!query.isCorrected || track.isCorrected) && track.isGone == query.isGone &&
           (!query.except || track.id != *query.except);
}

/** What a plain reading of the whole table finds. */
std::set<std::int64_t> idsContaining(const catalogue::Catalogue& catalogue, const std::string& text,
                                     bool isGone) {
    SQLite::Statement select(catalogue.database(), "SELECT id FROM tracks WHERE is_gone = ? AND "
                                                   "(?2 = '' OR instr(search, ?2) > 0)");
    select.bind(1, isGone ? 1 : 0);
    select.bind(2, catalogue::folded(text));
    std::set<std::int64_t> ids;
    while (select.executeStep()) ids.insert(select.getColumn(0).getInt64());
    return ids;
}

/** Lists in every format as well, whose text must not depend on the order of tracks. */
std::set<std::int64_t> listedIds(const catalogue::Catalogue& catalogue, const TrackQuery& query,
                                 output::ListFormat format) {
    std::set<std::int64_t> ids;
    const auto writer = makeListWriter(
        format, [](std::string_view) {}, std::nullopt);
    listTracks(catalogue, query, [&](const ListedTrack& track) {
        require(meets(track, query), "a listed track meets the conditions");
        require(ids.insert(track.id).second, "a track is listed once");
        writer->add(track);
    });
    return ids;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static const Scratch scratch;
    const FuzzersRoundingMode mode;
    FuzzInput input(bytes, count);
    const auto format = static_cast<output::ListFormat>(input.between(0, 3));
    TrackQuery query = queryOf(input);
    query.order = static_cast<TrackQuery::Order>(input.between(0, 7));
    const auto ids = listedIds(scratch.catalogue(), query, format);
    query.order = static_cast<TrackQuery::Order>(input.between(0, 7));
    require(listedIds(scratch.catalogue(), query, format) == ids, "an order loses no track");
    query.limit = input.between(0, 300);
    require(std::ssize(listedIds(scratch.catalogue(), query, format)) ==
                std::min<std::ptrdiff_t>(std::ssize(ids), static_cast<int>(*query.limit)),
            "a limit cuts nothing but the end");
    TrackQuery textAlone;
    textAlone.text = query.text;
    textAlone.isGone = query.isGone;
    require(listedIds(scratch.catalogue(), textAlone, format) ==
                idsContaining(scratch.catalogue(), query.text, query.isGone),
            "a text is found wherever it stands");
    if (const auto key = output::KeyName::parse(textOf(input)))
        require(key->number() >= 0 && key->number() < 24, "a key has a number");
    return 0;
}
