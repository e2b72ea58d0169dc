// SPDX-License-Identifier: MIT
#include <array>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "catalogue/Analysed.h"
#include "catalogue/CatalogueError.h"

namespace catalogue {

namespace {

using Json = nlohmann::ordered_json;
using beatatlas::track::Options;
using beatatlas::track::TempoMode;

constexpr std::array kModes = {
    std::pair(TempoMode::automatic, "auto"), std::pair(TempoMode::constant, "constant"),
    std::pair(TempoMode::varied, "varied"), std::pair(TempoMode::simple, "simple"),
    std::pair(TempoMode::off, "off")};

const char* nameOf(TempoMode mode) {
    for (const auto& [known, name] : kModes) {
        if (known == mode) return name;
    }
    return "off";
}

TempoMode modeOf(std::string_view name) {
    for (const auto& [mode, known] : kModes) {
        if (name == known) return mode;
    }
    throw DamagedRecord("the parameters of a result in the catalogue are damaged");
}

}  // namespace

std::string parametersText(const Options& options) {
    Json json = {{"tempo", nameOf(options.tempo)}};
    if (options.tempo == TempoMode::automatic) {
        if (options.highestBpm > 0.0) json["bpmRange"] = {options.lowestBpm, options.highestBpm};
        if (options.beatsPerBar > 0) json["beatsPerBar"] = options.beatsPerBar;
    }
    if (options.tempo == TempoMode::varied) json["section"] = options.sectionBeats;
    if (options.tempo == TempoMode::simple) json["range"] = options.rangeSeconds;
    json["key"] = options.wantsKey;
    json["sessionKey"] = options.wantsSessionKey;
    json["waves"] = options.wantsWaves;
    return json.dump();
}

Options optionsOf(const std::string& parameters) {
    try {
        const Json json = Json::parse(parameters);
        Options options;
        options.tempo = modeOf(json.at("tempo").get<std::string>());
        if (json.contains("bpmRange")) {
            options.lowestBpm = json["bpmRange"].at(0).get<double>();
            options.highestBpm = json["bpmRange"].at(1).get<double>();
        }
        options.beatsPerBar = json.value("beatsPerBar", options.beatsPerBar);
        options.sectionBeats = json.value("section", options.sectionBeats);
        options.rangeSeconds = json.value("range", options.rangeSeconds);
        options.wantsKey = json.at("key").get<bool>();
        options.wantsSessionKey = json.at("sessionKey").get<bool>();
        options.wantsWaves = json.at("waves").get<bool>();
        return options;
    } catch (const Json::exception&) {
        throw DamagedRecord("the parameters of a result in the catalogue are damaged");
    }
}

}  // namespace catalogue
