// SPDX-License-Identifier: MIT
#include "SyntheticCatalogue.h"

#include <array>
#include <random>
#include <string>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <fmt/format.h>

#include "catalogue/TrackStore.h"

namespace bench {

namespace {

constexpr std::int64_t kTracksOfTransaction = 20000;
constexpr int kTracksOfAlbum = 12;
constexpr int kAlbumsOfArtist = 7;

constexpr std::array kWords = {
    "Love",   "Night",  "Blue",   "Fire",   "River",    "Golden", "Silent", "Machine",
    "Summer", "Winter", "Dance",  "Heart",  "Electric", "Moon",   "Street", "Dream",
    "Broken", "Light",  "Shadow", "City",   "Ocean",    "Velvet", "Wild",   "Paper",
    "Stone",  "Mirror", "Echo",   "Signal", "Motion",   "Über",   "Café",   "Soul"};

std::string wordsFor(std::uint64_t number, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += ' ';
        text += kWords.at(number % kWords.size());
        number = number / kWords.size() * 2862933555777941757ULL + 3037000493ULL;
    }
    return text;
}

catalogue::AudioHash hashOf(std::uint64_t number) {
    catalogue::AudioHash hash{};
    for (std::size_t i = 0; i < 8; ++i) hash.at(i) = static_cast<std::uint8_t>(number >> (8 * i));
    return hash;
}

class Inventor {
public:
    catalogue::Analysed next() {
        const std::int64_t number = number_++;
        const std::int64_t album = number / kTracksOfAlbum;
        // A multiplier without a divisor in common with the modulus scatters the artists.
        const auto artist = static_cast<std::uint64_t>(album / kAlbumsOfArtist) * 7919U % 1000003U;
        base::TrackSource file;
        file.format = {"mp3", "mp3", 2, 44100, 44100};
        file.format.tags.artist = fmt::format("{} {}", wordsFor(artist, 2), artist);
        file.format.tags.title = wordsFor(random_(), 3);
        file.path = fmt::format("/music/{}/{} {}/{:02} {}.mp3", file.format.tags.artist,
                                wordsFor(static_cast<std::uint64_t>(album) * 31U, 2), album,
                                number % kTracksOfAlbum + 1, file.format.tags.title);
        return catalogue::makeAnalysed(file, {4000000 + number % 5000000, number},
                                       hashOf(random_()), {}, result(), 1.0, {}, "0.0.0");
    }

    bool isOneIn(unsigned count) { return random_() % count == 0; }

private:
    /** 0 to 1. */
    double share() { return static_cast<double>(random_() >> 11U) / 9007199254740992.0; }

    /** Sums of shares gather about their mean. */
    double tempo() {
        const double around = isOneIn(3) ? 90.0 : 126.0;
        const double spread = share() + share() + share() - 1.5;
        return static_cast<double>(static_cast<int>((around + 30.0 * spread) * 100.0)) / 100.0;
    }

    beatatlas::track::TrackResult result() {
        beatatlas::track::TrackResult result;
        result.rate = 44100;
        result.frames = static_cast<std::int64_t>((120.0 + 300.0 * share()) * result.rate);
        if (!isOneIn(50)) {
            result.bpm = tempo();
            result.judgement.emplace();
            result.judgement->rawBpm = *result.bpm;
            result.judgement->confidence = {1.0, 0.6 + 0.4 * share(), 0.7 + 0.3 * share(), 0.5};
            for (int i = 0; i < 8; ++i)
                result.beats.push_back({i * 0.5, *result.bpm, i * 22050, i % 4 + 1});
        }
        if (!isOneIn(40)) {
            result.key.emplace();
            const int best = static_cast<int>(random_() % beatatlas::track::kKeyCount);
            for (int i = 0; i < beatatlas::track::kKeyCount; ++i)
                result.key->ranking.at(static_cast<std::size_t>(i)).key =
                    (best + i) % beatatlas::track::kKeyCount;
            result.key->confidence = 0.3 + 0.7 * share();
        }
        return result;
    }

    std::int64_t number_ = 0;
    std::mt19937_64 random_{1};
};

}  // namespace

void fillCatalogue(catalogue::Catalogue& catalogue, std::int64_t tracks) {
    catalogue::TrackStore store(catalogue);
    SQLite::Database& database = catalogue.database();
    Inventor inventor;
    for (std::int64_t done = 0; done < tracks;) {
        SQLite::Transaction transaction(database);
        const std::int64_t end = std::min(tracks, done + kTracksOfTransaction);
        for (; done < end; ++done) {
            const catalogue::Analysed analysed = inventor.next();
            const auto track = store.putTrack(analysed.track);
            store.putResult(track, analysed.result, done, done);
            store.refresh(track);
        }
        transaction.commit();
    }
    // One track in a thousand is corrected, one in twenty is gone, and of the paths that are no
    // tracks one in ten is music.
    SQLite::Transaction transaction(database);
    database.exec("INSERT INTO corrections (audio_hash, kind, value, made_at) "
                  "SELECT audio_hash, 'double', 0, 0 FROM tracks WHERE id % 1000 = 7");
    database.exec("UPDATE tracks SET bpm = 2 * bpm, is_corrected = 1 WHERE id % 1000 = 7");
    database.exec("UPDATE tracks SET gone_at = 0 WHERE id % 20 = 3");
    database.exec("INSERT INTO failures SELECT CAST('/music/x' || id AS BLOB), 1, 1, "
                  "iif(id % 10 = 0, 'damaged', 'not-audio'), 'is cut off', 1, 0, NULL FROM tracks "
                  "WHERE id % 5 = 0");
    transaction.commit();
}

}  // namespace bench
