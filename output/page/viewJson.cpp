// SPDX-License-Identifier: MIT
#include "output/page/viewJson.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>

#include <nlohmann/json.hpp>

#include "base/displayName.h"
#include "output/formats/trackNames.h"
#include "output/jsonParts.h"
#include "output/page/packed.h"
#include "output/textParts.h"
#include "output/textSummary.h"
#include "output/trackJson.h"

namespace output {

namespace {

using Json = nlohmann::ordered_json;
using beatatlas::track::Beat;
using beatatlas::track::WavePoint;

constexpr int kZoomPointsPerSecond = 150;
constexpr int kZoomColors = 8;

void append(std::string& bytes, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>((value >> shift) & 0xFFU);
}

/** @param pack  appends one element to the bytes */
template <class Element, class Pack>
std::string packed(const std::vector<Element>& elements, const Pack& pack) {
    std::string bytes;
    for (const Element& element : elements) pack(bytes, element);
    return base64(bytes);
}

Json beatsJson(const std::vector<Beat>& beats) {
    // A track has at most 2,147,483,647 frames, and tempos stay below 10,000 BPM.
    const auto frame = [](std::string& bytes, const Beat& beat) {
        append(bytes, static_cast<std::uint32_t>(beat.frame));
    };
    const auto number = [](std::string& bytes, const Beat& beat) {
        bytes += static_cast<char>(beat.numberInBar);
    };
    const auto bpm = [](std::string& bytes, const Beat& beat) {
        append(bytes, static_cast<std::uint32_t>(std::lround(beat.bpm * 100.0)));
    };
    return {{"frames", packed(beats, frame)},
            {"numbers", packed(beats, number)},
            {"bpm", packed(beats, bpm)}};
}

Json waveJson(const std::vector<WavePoint>& wave) {
    const auto level = [](std::string& bytes, const WavePoint& point) {
        append(bytes, std::bit_cast<std::uint32_t>(point.level));
    };
    const auto color = [](std::string& bytes, const WavePoint& point) {
        bytes += static_cast<char>(point.color);
    };
    return {{"levels", packed(wave, level)}, {"colors", packed(wave, color)}};
}

Json zoomJson(const std::vector<WavePoint>& wave) {
    const auto point = [](std::string& bytes, const WavePoint& each) {
        bytes += static_cast<char>(static_cast<int>(each.level) * kZoomColors + each.color);
    };
    return {{"pointsPerSecond", kZoomPointsPerSecond}, {"points", packed(wave, point)}};
}

Json keysJson() {
    Json keys = Json::array();
    for (int number = 0; number < beatatlas::track::kKeyCount; ++number)
        keys.push_back(keyNameJson(number));
    return keys;
}

Json correctionsJson(const std::vector<CorrectionNote>& corrections) {
    Json json = Json::array();
    for (const CorrectionNote& each : corrections)
        json.push_back({{"kind", each.kind}, {"value", each.value}, {"text", each.text}});
    return json;
}

/** The member of a key's entry that names it as it is to be shown; null where nothing was said. */
Json notationJson(const std::optional<KeyNotation>& notation) {
    if (!notation) return nullptr;
    switch (*notation) {
    case KeyNotation::standard:
        return "name";
    case KeyNotation::sharps:
        return "sharps";
    case KeyNotation::flats:
        return "flats";
    case KeyNotation::camelot:
        return "camelot";
    case KeyNotation::openKey:
        return "openKey";
    case KeyNotation::german:
        return "german";
    case KeyNotation::solfege:
        return "solfege";
    }
    return nullptr;
}

}  // namespace

Json viewJson(const TrackReport& report, const std::vector<CorrectionNote>& corrections) {
    const beatatlas::track::TrackResult& analysis = report.analysis;
    Json view = trackJson(report, false);
    // Whoever gets the page need not learn the folders of whoever made it.
    view.erase("fileBytes");
    view["file"] = base::displayName(std::filesystem::path(report.path).filename().string());
    view["artist"] = artistOf(report);
    view["title"] = titleOf(report);
    view["keyNotation"] = notationJson(report.keyNotation);
    view["remarks"] = {{"tempo", tempoRemarks(report)}, {"key", keyDoubts(report)}};
    view["beats"] = beatsJson(analysis.beats);
    view["waves"] = {{"loud", waveJson(analysis.loudWave)},
                     {"dots", waveJson(analysis.dotsWave)},
                     {"zoom", zoomJson(analysis.zoomWave)}};
    view["keys"] = keysJson();
    view["corrections"] = correctionsJson(corrections);
    return view;
}

}  // namespace output
