// SPDX-License-Identifier: MIT
#include "scan/workerFrames.h"

#include <stdexcept>
#include <utility>

#include <nlohmann/json.hpp>

namespace app {

namespace {

using nlohmann::json;

// The overviews of the longest track that can be analysed take less.
constexpr std::size_t kMostFrameBytes = std::size_t{512} << 20U;
constexpr std::size_t kLengthBytes = 4;

std::string framed(const json& message) {
    std::string frame(kLengthBytes, '\0');
    json::to_cbor(message, frame);
    const std::size_t length = frame.size() - kLengthBytes;
    if (length > kMostFrameBytes) throw std::length_error("a result is too long to hand over");
    for (std::size_t i = 0; i < kLengthBytes; ++i)
        frame[i] = static_cast<char>((length >> (8 * i)) & 0xFFU);
    return frame;
}

json parsed(std::string_view frame) {
    return json::from_cbor(frame);
}

json toJson(const catalogue::FileState& state) {
    return {state.size, state.modifiedNanoseconds};
}

catalogue::FileState stateOf(const json& message) {
    return {message.at(0), message.at(1)};
}

json toJson(const base::TrackFormat& format) {
    return {format.container,   format.codec,   format.channels,    format.trackRate,
            format.sessionRate, format.changes, format.tags.artist, format.tags.title};
}

base::TrackFormat formatOf(const json& message) {
    return {message.at(0),
            message.at(1),
            message.at(2),
            message.at(3),
            message.at(4),
            message.at(5),
            {message.at(6), message.at(7)}};
}

json toJson(const catalogue::TrackRow& track) {
    return {{"path", track.path},     {"state", toJson(track.state)},
            {"hash", track.hash},     {"format", toJson(track.format)},
            {"frames", track.frames}, {"seconds", track.seconds}};
}

catalogue::TrackRow trackOf(const json& message) {
    return {message.at("path"),   stateOf(message.at("state")),
            message.at("hash"),   formatOf(message.at("format")),
            message.at("frames"), message.at("seconds")};
}

json toJson(const BA_TrackConfidence& confidence) {
    return {confidence.tempo, confidence.level, confidence.phase, confidence.bars};
}

BA_TrackConfidence confidenceOf(const json& message) {
    return {message.at(0), message.at(1), message.at(2), message.at(3)};
}

template <class Value>
json toJson(const std::optional<Value>& value) {
    return value ? json(*value) : json();
}

template <class Value>
std::optional<Value> optionalOf(const json& message) {
    return message.is_null() ? std::nullopt : std::optional<Value>(message.get<Value>());
}

json toJson(const catalogue::ResultRow& result) {
    return {{"parameters", result.parameters},
            {"version", result.toolVersion},
            {"cost", result.analysisSeconds},
            {"warnings", result.warnings},
            {"bpm", toJson(result.bpm)},
            {"rawBpm", toJson(result.rawBpm)},
            {"isSteady", toJson(result.isSteady)},
            {"confidence", toJson(result.confidence)},
            {"key", result.key},
            {"keyConfidence", result.keyConfidence},
            {"tuning", result.tuningCents},
            {"details", result.details},
            {"beats", result.beats},
            {"loud", result.loudWave},
            {"dots", result.dotsWave},
            {"zoom", result.zoomWave}};
}

catalogue::ResultRow resultOf(const json& message) {
    catalogue::ResultRow result;
    result.parameters = message.at("parameters");
    result.toolVersion = message.at("version");
    result.analysisSeconds = message.at("cost");
    result.warnings = message.at("warnings").get<std::vector<std::string>>();
    result.bpm = optionalOf<double>(message.at("bpm"));
    result.rawBpm = optionalOf<double>(message.at("rawBpm"));
    result.isSteady = optionalOf<bool>(message.at("isSteady"));
    result.confidence = confidenceOf(message.at("confidence"));
    result.key = message.at("key");
    result.keyConfidence = message.at("keyConfidence");
    result.tuningCents = message.at("tuning");
    result.details = message.at("details");
    result.beats = message.at("beats");
    result.loudWave = message.at("loud");
    result.dotsWave = message.at("dots");
    result.zoomWave = message.at("zoom");
    return result;
}

json toJson(const WorkerReady&) {
    return {{"ready", true}};
}

json toJson(const WorkerProgress& progress) {
    return {{"progress", progress.fraction}, {"seconds", progress.seconds}};
}

json toJson(const WorkerHash& hashed) {
    return {
        {"hash", hashed.hash}, {"state", toJson(hashed.state)}, {"format", toJson(hashed.format)}};
}

json toJson(const catalogue::Analysed& analysed) {
    return {{"track", toJson(analysed.track)}, {"result", toJson(analysed.result)}};
}

json toJson(const catalogue::Failure& failed) {
    return {{"failure", static_cast<int>(failed.kind)}, {"reason", failed.reason}};
}

}  // namespace

std::string frameOf(const WorkerOrders& orders) {
    return framed({{"parameters", orders.parameters},
                   {"acceptsCutOff", orders.acceptsCutOff},
                   {"isVerbose", orders.isVerbose},
                   {"memoryLimit", orders.memoryLimit}});
}

std::string frameOf(const WorkerTask& task) {
    return framed({{"path", task.path}, {"mayBeKnown", task.mayBeKnown}});
}

std::string frameOf(const WorkerVerdict& verdict) {
    return framed({{"goesOn", verdict.goesOn}});
}

std::string frameOf(const WorkerAnswer& answer) {
    return std::visit([](const auto& kind) { return framed(toJson(kind)); }, answer);
}

WorkerOrders ordersOf(std::string_view frame) {
    const json message = parsed(frame);
    return {message.at("parameters"), message.at("acceptsCutOff"), message.at("isVerbose"),
            message.at("memoryLimit")};
}

WorkerTask taskOf(std::string_view frame) {
    const json message = parsed(frame);
    return {message.at("path"), message.at("mayBeKnown")};
}

WorkerVerdict verdictOf(std::string_view frame) {
    return {parsed(frame).at("goesOn")};
}

WorkerAnswer answerOf(std::string_view frame) {
    const json message = parsed(frame);
    if (message.contains("progress"))
        return WorkerProgress{message.at("progress"), message.at("seconds")};
    if (message.contains("track"))
        return catalogue::Analysed{trackOf(message.at("track")), resultOf(message.at("result"))};
    if (message.contains("hash"))
        return WorkerHash{stateOf(message.at("state")), message.at("hash"),
                          formatOf(message.at("format"))};
    if (message.contains("failure"))
        return catalogue::Failure{
            static_cast<catalogue::FailureKind>(message.at("failure").get<int>()),
            message.at("reason")};
    return WorkerReady{};
}

std::optional<std::string> FrameGatherer::take() {
    if (waiting_.size() < kLengthBytes) return std::nullopt;
    std::size_t length = 0;
    for (std::size_t i = 0; i < kLengthBytes; ++i)
        length |= std::size_t{static_cast<unsigned char>(waiting_[i])} << (8 * i);
    if (length > kMostFrameBytes) throw std::runtime_error("a frame of impossible length");
    if (waiting_.size() - kLengthBytes < length) return std::nullopt;
    std::string frame = waiting_.substr(kLengthBytes, length);
    waiting_.erase(0, kLengthBytes + length);
    return frame;
}

}  // namespace app
