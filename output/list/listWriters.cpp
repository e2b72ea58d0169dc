// SPDX-License-Identifier: MIT
#include "output/list/ListWriter.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "output/formats/csvText.h"
#include "output/jsonParts.h"
#include "output/textFormat.h"
#include "output/textParts.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;

// As far as shares of tracks were counted, and less than the distance of two samples.
constexpr int kConfidencePlaces = 4;
constexpr int kSecondsPlaces = 6;

/** What the confidence is of; "" where there is none. */
std::string leastSureName(const base::ListedTrack& entry) {
    if (!entry.leastSure) return {};
    return *entry.leastSure == base::ListedTrack::Part::tempo ? "tempo" : "key";
}

class TableList : public ListWriter {
public:
    TableList(TextSink write, const std::optional<KeyNotation>& notation)
        : write_(std::move(write)), notation_(notation) {}

    void beginTracks() override { write_(line("BPM", "Key", "Length", "Least sure", "", "File")); }

    void add(const base::ListedTrack& entry) override {
        write_(line(entry.bpm ? bpmText(*entry.bpm) : "-",
                    entry.key ? shortKeyName(*entry.key, notation_) : "-",
                    clockTimeInSeconds(entry.seconds), sureText(entry), remarkOn(entry),
                    base::displayName(entry.path)));
    }

    void add(const base::ListedFailure& entry) override {
        write_(fmt::format("{}: {} ({}, {})\n", base::displayName(entry.path),
                           base::displayName(entry.reason), entry.kind,
                           counted(entry.attempts, "attempt")));
    }

private:
    static std::string line(const std::string& bpm, const std::string& key,
                            const std::string& length, const std::string& sure,
                            const std::string& remark, const std::string& file) {
        return fmt::format("{:>7}  {:<14}  {:>8}  {:>10}  {:<9}  {}\n", bpm, key, length, sure,
                           remark, file);
    }

    /** "key 0.88" */
    static std::string sureText(const base::ListedTrack& entry) {
        if (!entry.confidence) return "-";
        return fmt::format("{} {:.2f}", leastSureName(entry), *entry.confidence);
    }

    static std::string remarkOn(const base::ListedTrack& entry) {
        if (entry.isGone) return "gone";
        return entry.isCorrected ? "corrected" : "";
    }

    TextSink write_;
    std::optional<KeyNotation> notation_;
};

class JsonLinesList : public ListWriter {
public:
    explicit JsonLinesList(TextSink write) : write_(std::move(write)) {}

    void add(const base::ListedTrack& entry) override {
        Json json = nameJson(entry.path);
        json["artist"] = utf8Text(entry.artist);
        json["title"] = utf8Text(entry.title);
        json["seconds"] = entry.seconds;
        json["bpm"] = entry.bpm ? Json(*entry.bpm) : Json(nullptr);
        json["key"] = entry.key ? keyNameJson(*entry.key) : Json(nullptr);
        json["confidence"] = entry.confidence ? Json(*entry.confidence) : Json(nullptr);
        json["corrected"] = entry.isCorrected;
        json["gone"] = entry.isGone;
        json["leastSure"] = entry.leastSure ? Json(leastSureName(entry)) : Json(nullptr);
        write_(json.dump() + "\n");
    }

    void add(const base::ListedFailure& entry) override {
        Json json = nameJson(entry.path);
        json["error"] = utf8Text(entry.reason);
        json["kind"] = entry.kind;
        json["attempts"] = entry.attempts;
        write_(json.dump() + "\n");
    }

private:
    TextSink write_;
};

class CsvList : public ListWriter {
public:
    explicit CsvList(TextSink write) : write_(std::move(write)) {}

    void beginTracks() override {
        write_(
            "file,artist,title,seconds,bpm,key,camelot,confidence,corrected,gone,least_sure\r\n");
    }

    void add(const base::ListedTrack& entry) override {
        writeRow({csvField(utf8Text(entry.path)), csvField(utf8Text(entry.artist)),
                  csvField(utf8Text(entry.title)), shortNumber(entry.seconds, kSecondsPlaces),
                  entry.bpm ? bpmText(*entry.bpm) : "",
                  entry.key ? KeyName(*entry.key).musical() : "",
                  entry.key ? KeyName(*entry.key).camelot() : "",
                  entry.confidence ? shortNumber(*entry.confidence, kConfidencePlaces) : "",
                  entry.isCorrected ? "1" : "0", entry.isGone ? "1" : "0", leastSureName(entry)});
    }

    void beginFailures() override { write_("file,error,kind,attempts\r\n"); }

    void add(const base::ListedFailure& entry) override {
        writeRow({csvField(utf8Text(entry.path)), csvField(utf8Text(entry.reason)),
                  csvField(entry.kind), fmt::format("{}", entry.attempts)});
    }

private:
    void writeRow(std::initializer_list<std::string> fields) {
        write_(fmt::format("{}\r\n", fmt::join(fields, ",")));
    }

    TextSink write_;
};

class PlaylistList : public ListWriter {
public:
    explicit PlaylistList(TextSink write) : write_(std::move(write)) {}

    void beginTracks() override { write_("#EXTM3U\n"); }

    void add(const base::ListedTrack& entry) override {
        write_(fmt::format("#EXTINF:{},{}\n{}\n", std::lround(entry.seconds), nameOf(entry),
                           placeOf(entry.path)));
    }

    void beginFailures() override { beginTracks(); }

    void add(const base::ListedFailure& entry) override { write_(placeOf(entry.path) + "\n"); }

private:
    static std::string nameOf(const base::ListedTrack& entry) {
        if (entry.artist.empty() && entry.title.empty())
            return base::displayName(entry.path.substr(entry.path.rfind('/') + 1));
        if (entry.artist.empty() || entry.title.empty())
            return base::displayName(entry.artist + entry.title);
        return base::displayName(entry.artist) + " - " + base::displayName(entry.title);
    }

    /** A name that does not fit a line of UTF-8 as the address of its file. */
    static std::string placeOf(const std::string& path) {
        const bool isPlain = base::displayName(path) == path && path.starts_with('/');
        if (isPlain) return path;
        return fileAddress(path);
    }

    TextSink write_;
};

}  // namespace

std::unique_ptr<ListWriter> makeListWriter(ListFormat format, TextSink write,
                                           const std::optional<KeyNotation>& notation) {
    switch (format) {
    case ListFormat::jsonLines:
        return std::make_unique<JsonLinesList>(std::move(write));
    case ListFormat::csv:
        return std::make_unique<CsvList>(std::move(write));
    case ListFormat::playlist:
        return std::make_unique<PlaylistList>(std::move(write));
    case ListFormat::table:
        break;
    }
    return std::make_unique<TableList>(std::move(write), notation);
}

}  // namespace output
