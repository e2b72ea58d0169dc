// SPDX-License-Identifier: MIT
#include "comparison/beatJson.h"

#include <cmath>
#include <limits>
#include <map>
#include <string>

#include <nlohmann/json.hpp>

#include "base/errors.h"
#include "comparison/keyRelation.h"

namespace comparison {

namespace {

using Document = nlohmann::json;

/** A member of an object; null where it is none, or has no such member. */
const Document& memberOf(const Document& object, const char* name) {
    static const Document nothing;
    if (!object.is_object()) return nothing;
    const auto found = object.find(name);
    return found == object.end() ? nothing : *found;
}

std::optional<double> numberOf(const Document& value) {
    return value.is_number() ? std::optional(value.get<double>()) : std::nullopt;
}

/** Nothing unless it is a whole number of a size that counts anything in music. */
std::optional<int> wholeNumberOf(const Document& value) {
    const auto number = numberOf(value);
    constexpr double kMost = 1e6;
    if (!number || std::abs(*number) > kMost || *number != std::floor(*number)) return std::nullopt;
    return static_cast<int>(*number);
}

std::optional<double> bpmOf(const Document& value) {
    const auto bpm = numberOf(value);
    return bpm && *bpm > 0.0 ? bpm : std::nullopt;
}

std::string textOf(const Document& value) {
    return value.is_string() ? value.get<std::string>() : std::string();
}

SheetBeat beatOf(const Document& seconds, const Document& number) {
    return {numberOf(seconds).value_or(std::numeric_limits<double>::quiet_NaN()),
            wholeNumberOf(number)};
}

BeatSheet readTrack(const Document& track) {
    if (const std::string reason = textOf(memberOf(track, "error")); !reason.empty())
        throw base::TrackError("holds no result: the track " + reason);
    BeatSheet sheet;
    const Document& beats = memberOf(track, "beats");
    if (beats.is_array()) {
        for (const Document& beat : beats)
            sheet.beats.push_back(beatOf(memberOf(beat, "seconds"), memberOf(beat, "beat")));
    }
    sheet.bpm = bpmOf(memberOf(memberOf(track, "tempo"), "bpm"));
    const auto key = wholeNumberOf(memberOf(memberOf(track, "key"), "number"));
    if (key && *key >= 0 && *key < kKeys) sheet.key = key;
    return sheet;
}

BeatSheet readResult(const Document& document) {
    const Document& tracks = memberOf(document, "tracks");
    if (!tracks.is_array() || tracks.empty()) throw base::TrackError("holds no track");
    if (tracks.size() > 1)
        throw base::TrackError("holds " + std::to_string(tracks.size()) +
                               " tracks: only one can be compared");
    return readTrack(tracks[0]);
}

/** What an annotation holds, in either of the two forms that JAMS has for it: a list of
 *  observations, or a list for each of their members. */
class Observations {
public:
    explicit Observations(const Document& annotation) : data_(memberOf(annotation, "data")) {}

    std::size_t count() const {
        const Document& list = data_.is_object() ? memberOf(data_, "time") : data_;
        return list.is_array() ? list.size() : 0;
    }

    const Document& at(std::size_t index, const char* member) const {
        static const Document nothing;
        if (data_.is_array()) return memberOf(data_[index], member);
        const Document& list = memberOf(data_, member);
        return list.is_array() && index < list.size() ? list[index] : nothing;
    }

private:
    const Document& data_;
};

/** The first annotation of a namespace. */
Observations annotationOf(const Document& document, const std::string& space) {
    static const Document nothing;
    const Document& annotations = memberOf(document, "annotations");
    if (annotations.is_array()) {
        for (const Document& annotation : annotations) {
            if (textOf(memberOf(annotation, "namespace")) == space) return Observations(annotation);
        }
    }
    return Observations(nothing);
}

/** The value that holds longest; nothing when none can be read.
 *  @param read  makes a value of JSON, or nothing */
template <class Read>
auto longest(const Observations& observations, Read read) -> decltype(read(Document())) {
    std::map<double, double> lengths;
    decltype(read(Document())) best;
    for (std::size_t i = 0; i < observations.count(); ++i) {
        const auto value = read(observations.at(i, "value"));
        if (!value) continue;
        const double length = numberOf(observations.at(i, "duration")).value_or(0.0);
        lengths[*value] += length > 0.0 ? length : 0.0;
        if (!best || lengths[*value] > lengths[*best]) best = value;
    }
    return best;
}

BeatSheet readJams(const Document& document) {
    BeatSheet sheet;
    const Observations beats = annotationOf(document, "beat");
    for (std::size_t i = 0; i < beats.count(); ++i)
        sheet.beats.push_back(beatOf(beats.at(i, "time"), beats.at(i, "value")));
    if (beats.count() == 0) {
        const Observations placed = annotationOf(document, "beat_position");
        for (std::size_t i = 0; i < placed.count(); ++i)
            sheet.beats.push_back(
                beatOf(placed.at(i, "time"), memberOf(placed.at(i, "value"), "position")));
    }
    sheet.bpm = longest(annotationOf(document, "tempo"), bpmOf);
    sheet.key = longest(annotationOf(document, "key_mode"),
                        [](const Document& value) { return keyNamed(textOf(value)); });
    return sheet;
}

}  // namespace

BeatSheet readBeatJson(std::string_view text) {
    const Document document = Document::parse(text, nullptr, false);
    if (document.is_discarded()) throw base::TrackError("is not whole JSON");
    if (memberOf(document, "annotations").is_array()) return readJams(document);
    if (textOf(memberOf(document, "format")).starts_with("beatatlas.")) return readResult(document);
    throw base::TrackError("is neither a result of beatatlas nor JAMS");
}

}  // namespace comparison
