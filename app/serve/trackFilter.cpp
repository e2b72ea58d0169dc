// SPDX-License-Identifier: MIT
#include "serve/trackFilter.h"

#include "output/KeyName.h"
#include "serve/plainNumber.h"

namespace app {

namespace {

using Order = catalogue::TrackQuery::Order;
using catalogue::kHighestBpm;
using catalogue::kLowestBpm;

constexpr std::size_t kLongestText = 1000;

bool isSet(const HttpRequest& request, const std::string& name) {
    return request.parameter(name) == "1";
}

double bpmOf(const HttpRequest& request, const std::string& name, double usual) {
    const auto text = request.parameter(name);
    if (!text || text->empty()) return usual;
    const auto bpm = plainNumber<double>(*text);
    if (!bpm || !(*bpm >= kLowestBpm && *bpm <= kHighestBpm))
        throw BadRequest("a tempo is a number from 1 to 10000 BPM");
    return *bpm;
}

void setTempo(catalogue::TrackQuery& query, const HttpRequest& request) {
    const double lowest = bpmOf(request, "lowest", kLowestBpm);
    const double highest = bpmOf(request, "highest", kHighestBpm);
    if (lowest > highest) throw BadRequest("the lower tempo is above the higher one");
    if (lowest > kLowestBpm || highest < kHighestBpm) query.bpm = {{lowest, highest}};
}

void setKey(catalogue::TrackQuery& query, const HttpRequest& request) {
    const auto text = request.parameter("key");
    if (!text || text->empty()) return;
    const auto key = output::KeyName::parse(*text);
    if (!key) throw BadRequest("a key is written like 8A, 1m, A minor, Am or F#");
    query.keys = {key->number()};
}

/** What mixes with a track as lists show it, so with its corrections. */
void setCompanion(catalogue::TrackQuery& query, const HttpRequest& request,
                  const catalogue::Catalogue& catalogue) {
    const auto text = request.parameter("compatible");
    if (!text || text->empty()) return;
    const auto number = trackNumber(*text);
    std::optional<base::ListedTrack> companion;
    if (number) {
        listChosen(catalogue, {*number},
                   [&](const base::ListedTrack& track) { companion = track; });
    }
    if (!companion) throw BadRequest("the track to mix with is not in the catalogue");
    if (!companion->key && !companion->bpm)
        throw BadRequest("the track to mix with has neither a key nor a tempo");
    catalogue::narrowToCompatible(query, companion->key, companion->bpm, catalogue::kUsualPercent);
    query.except = number;
}

Order orderOf(const HttpRequest& request) {
    const auto text = request.parameter("sort");
    if (!text || text->empty()) return Order::path;
    const auto orders = catalogue::orders();
    const auto found = orders.find(*text);
    if (found == orders.end()) throw BadRequest("there is no such order");
    return found->second;
}

}  // namespace

TrackFilter filterOf(const HttpRequest& request, const catalogue::Catalogue& catalogue) {
    TrackFilter filter;
    filter.wantsFailures = isSet(request, "failed");
    catalogue::TrackQuery& query = filter.query;
    query.isReversed = isSet(request, "reverse");
    if (filter.wantsFailures) return filter;
    query.text = request.parameter("text").value_or("");
    if (query.text.size() > kLongestText) throw BadRequest("the text is too long");
    setTempo(query, request);
    setKey(query, request);
    setCompanion(query, request, catalogue);
    if (isSet(request, "low")) query.confidenceBelow = catalogue::kSureConfidence;
    query.isCorrected = isSet(request, "corrected");
    query.isGone = isSet(request, "gone");
    query.order = orderOf(request);
    return filter;
}

std::optional<std::int64_t> trackNumber(const std::string& text) {
    const auto number = plainNumber<std::int64_t>(text);
    if (!number || *number < 1) return std::nullopt;
    return number;
}

std::int64_t countOf(const HttpRequest& request, const std::string& name, std::int64_t usual,
                     std::int64_t highest) {
    const auto text = request.parameter(name);
    if (!text) return usual;
    const auto count = plainNumber<std::int64_t>(*text);
    if (!count || *count < 0 || *count > highest)
        throw BadRequest(name + " is a number from 0 to " + std::to_string(highest));
    return *count;
}

}  // namespace app
