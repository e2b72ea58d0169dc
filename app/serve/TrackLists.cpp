// SPDX-License-Identifier: MIT
#include "serve/TrackLists.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

#include "base/displayName.h"
#include "catalogue/CatalogueError.h"
#include "catalogue/TrackStore.h"
#include "catalogue/query/overview.h"
#include "catalogue/query/totals.h"
#include "output/KeyName.h"
#include "output/page/packed.h"
#include "serve/trackFilter.h"

namespace app {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostKept = 4;
constexpr std::int64_t kUsualPage = 200;
constexpr std::int64_t kMostOnPage = 1000;
constexpr std::size_t kMostStrips = 200;
constexpr std::int64_t kQuietSeconds = 20;
constexpr int kColors = 8;
constexpr float kHighestLevel = 31.0F;

/** The device and the number of a file, 0 when there is none. */
std::pair<std::uint64_t, std::uint64_t> identityOf(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return {};
    return {status.st_dev, status.st_ino};
}

Json keyJson(const std::optional<int>& key) {
    if (!key) return nullptr;
    const output::KeyName name(*key);
    return {{"number", *key}, {"name", name.musical()}, {"camelot", name.camelot()}};
}

Json numberJson(const std::optional<double>& number) {
    return number ? Json(*number) : Json(nullptr);
}

Json leastSureJson(const std::optional<base::ListedTrack::Part>& part) {
    if (!part) return nullptr;
    return *part == base::ListedTrack::Part::tempo ? "tempo" : "key";
}

Json trackJson(const base::ListedTrack& track) {
    return {{"id", track.id},
            {"file", base::displayName(track.path)},
            {"artist", track.artist.empty() ? "" : base::displayName(track.artist)},
            {"title", track.title.empty() ? "" : base::displayName(track.title)},
            {"seconds", track.seconds},
            {"bpm", numberJson(track.bpm)},
            {"key", keyJson(track.key)},
            {"confidence", numberJson(track.confidence)},
            {"leastSure", leastSureJson(track.leastSure)},
            {"corrected", track.isCorrected},
            {"gone", track.isGone}};
}

Json scanJson(const std::optional<catalogue::ScanProgress>& scan) {
    if (!scan) return nullptr;
    return {{"planned", scan->planned},
            {"done", scan->done},
            {"failed", scan->failed},
            {"audioSeconds", scan->audioSeconds},
            {"startedAt", scan->startedAt}};
}

Json failureJson(const base::ListedFailure& failure) {
    return {{"file", base::displayName(failure.path)},
            {"kind", failure.kind},
            {"reason", base::displayName(failure.reason)},
            {"attempts", failure.attempts}};
}

/** Everything that decides which list it is: all but the page. */
std::string questionOf(const HttpRequest& request) {
    Json question = Json::array();
    for (const auto& [name, value] : request.parameters) {
        if (name != "offset" && name != "limit")
            question.push_back({base::displayName(name), base::displayName(value)});
    }
    return question.dump();
}

/** @throws BadRequest */
std::vector<std::int64_t> numbersOf(const HttpRequest& request) {
    const std::string text = request.parameter("ids").value_or("");
    std::vector<std::int64_t> numbers;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const auto number = trackNumber(text.substr(start, end - start));
        if (!number || numbers.size() == kMostStrips)
            throw BadRequest("ids are up to 200 numbers of tracks");
        numbers.push_back(*number);
        start = end + 1;
    }
    return numbers;
}

/** 0 to 31; 0 for what is no number, which a damaged catalogue may hold. */
int stripLevel(float level, float loudest) {
    const float share = level / loudest;
    return share > 0.0F ? static_cast<int>(std::lround(std::min(share, 1.0F) * kHighestLevel)) : 0;
}

/** As high as the loudest of them. */
std::string stripOf(const std::vector<beatatlas::track::WavePoint>& wave) {
    float loudest = 0.0F;
    for (const auto& point : wave) loudest = std::max(loudest, point.level);
    if (!(loudest > 0.0F)) return {};
    std::string bytes;
    for (const auto& point : wave)
        bytes += static_cast<char>(stripLevel(point.level, loudest) * kColors +
                                   std::clamp(point.color, 0, kColors - 1));
    return output::base64(bytes);
}

}  // namespace

TrackLists::TrackLists(std::string path) : path_(std::move(path)) {}

TrackLists::~TrackLists() = default;

/** Opens the catalogue, or another one that took its place, and forgets lists of another state. */
void TrackLists::refresh() {
    const auto file = identityOf(path_);
    if (!catalogue_ || file != file_) {
        catalogue_.reset();
        catalogue_ =
            std::make_unique<catalogue::Catalogue>(path_, catalogue::Catalogue::Access::read);
        file_ = file;
        changeNumber_ = changeNumber(*catalogue_);
    } else if (const std::int64_t number = changeNumber(*catalogue_); number != changeNumber_) {
        changeNumber_ = number;
    } else {
        return;
    }
    ++revision_;
    kept_.clear();
}

const TrackLists::Ordered& TrackLists::ordered(const HttpRequest& request) {
    const std::string question = questionOf(request);
    const auto known = std::find_if(kept_.begin(), kept_.end(),
                                    [&](const Ordered& list) { return list.question == question; });
    if (known != kept_.end()) {
        kept_.splice(kept_.begin(), kept_, known);
        return kept_.front();
    }
    const TrackFilter filter = filterOf(request, *catalogue_);
    Ordered list{question, filter.wantsFailures, {}, {}};
    if (filter.wantsFailures) {
        listFailures(*catalogue_, filter.query.isReversed, std::nullopt,
                     [&](const base::ListedFailure& entry) { list.failures.push_back(entry); });
    } else {
        list.ids = listIds(*catalogue_, filter.query);
    }
    kept_.push_front(std::move(list));
    if (kept_.size() > kMostKept) kept_.pop_back();
    return kept_.front();
}

Json TrackLists::page(const HttpRequest& request) {
    const std::lock_guard lock(mutex_);
    refresh();
    const Ordered& list = ordered(request);
    const auto size = static_cast<std::int64_t>(std::max(list.ids.size(), list.failures.size()));
    const std::int64_t from = std::min(countOf(request, "offset", 0, std::int64_t{1} << 40), size);
    const std::int64_t to =
        std::min(from + countOf(request, "limit", kUsualPage, kMostOnPage), size);
    Json page = {{"total", size}, {"revision", revision_}, {"offset", from}};
    if (list.isOfFailures) {
        page["failures"] = Json::array();
        for (std::int64_t i = from; i < to; ++i)
            page["failures"].push_back(failureJson(list.failures[static_cast<std::size_t>(i)]));
        return page;
    }
    page["tracks"] = Json::array();
    listChosen(*catalogue_, {list.ids.begin() + from, list.ids.begin() + to},
               [&](const base::ListedTrack& track) { page["tracks"].push_back(trackJson(track)); });
    return page;
}

Json TrackLists::strips(const HttpRequest& request) {
    const std::vector<std::int64_t> numbers = numbersOf(request);
    const std::lock_guard lock(mutex_);
    refresh();
    Json strips = Json::object();
    for (const std::int64_t number : numbers) {
        std::string strip;
        try {
            strip = stripOf(overviewOf(*catalogue_, number));
        } catch (const catalogue::DamagedRecord&) {
            // The page of the track says what is damaged.
        }
        strips[std::to_string(number)] = strip;
    }
    return strips;
}

/** A scan that has written nothing for a while may have been killed, or have a long track before
 *  it: whether somebody holds its lock tells. */
std::optional<catalogue::ScanProgress> TrackLists::runningScan() {
    const auto scan = unfinishedScan(*catalogue_);
    if (!scan || scan->startedAt == deadScan_) return std::nullopt;
    if (catalogue::secondsNow() - scan->writtenAt < kQuietSeconds) return scan;
    if (isBeingScanned(*catalogue_)) return scan;
    deadScan_ = scan->startedAt;
    return std::nullopt;
}

Json TrackLists::totals() {
    const std::lock_guard lock(mutex_);
    refresh();
    const catalogue::Totals totals = totalsOf(*catalogue_);
    return {{"revision", revision_},       {"tracks", totals.tracks},
            {"gone", totals.gone},         {"corrected", totals.corrected},
            {"failures", totals.failures}, {"scan", scanJson(runningScan())}};
}

}  // namespace app
