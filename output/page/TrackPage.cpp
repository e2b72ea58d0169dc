// SPDX-License-Identifier: MIT
#include "output/page/TrackPage.h"

#include <functional>
#include <map>
#include <stdexcept>
#include <string_view>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "output/formats/trackNames.h"
#include "output/page/joinedModules.h"
#include "output/page/packed.h"
#include "output/page/viewJson.h"
#include "web/assets.h"

namespace output {

namespace {

constexpr const char* kTemplate = "report.html";
constexpr const char* kScript = "track/page.js";
constexpr const char* kStyle = "track/track.css";

// Base64 needs no padding between pieces of a multiple of three bytes.
constexpr std::size_t kPieceBytes = 3 << 16;

std::string_view assetText(std::string_view name) {
    const web::Asset* asset = web::findAsset(name);
    return asset == nullptr ? std::string_view() : asset->bytes;
}

std::string_view requireAsset(std::string_view name) {
    const std::string_view text = assetText(name);
    if (text.empty()) throw std::logic_error("the program lacks " + std::string(name));
    return text;
}

std::string escapedForHtml(std::string_view text) {
    std::string escaped;
    for (const char letter : text) {
        switch (letter) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += letter;
        }
    }
    return escaped;
}

/** JSON that no tag within it can end: "<" appears in its texts alone, where it may be written as
 *  an escape. */
std::string scriptSafe(const nlohmann::ordered_json& json) {
    std::string safe;
    for (const char letter : json.dump()) {
        if (letter == '<') {
            safe += "\\u003c";
        } else {
            safe += letter;
        }
    }
    return safe;
}

std::string policyOf(std::string_view script, std::string_view style) {
    return fmt::format("default-src 'none'; script-src {}; style-src {}; img-src data:; "
                       "media-src 'self' file: blob:; base-uri 'none'; form-action 'none'; "
                       "require-trusted-types-for 'script'; trusted-types 'none'",
                       policyHash(script), policyHash(style));
}

void writeSound(const PageSound& sound, const DocumentSink& write) {
    if (!sound.bytes) return;
    const std::string_view bytes = *sound.bytes;
    for (std::size_t at = 0; at < bytes.size(); at += kPieceBytes)
        write(base64(bytes.substr(at, kPieceBytes)));
}

nlohmann::ordered_json pageJson(const TrackReport& report, const PageSound& sound) {
    nlohmann::ordered_json json = {{"track", viewJson(report, {})}};
    json["audio"] = sound.address ? nlohmann::ordered_json(*sound.address) : nullptr;
    return json;
}

}  // namespace

void writeTrackPage(const TrackReport& report, const PageSound& sound, const DocumentSink& write) {
    const std::string script = joinedModules(kScript, assetText);
    const std::string_view style = requireAsset(kStyle);
    const std::map<std::string_view, std::function<void()>> fillings = {
        {"title", [&] { write(escapedForHtml(trackName(report))); }},
        {"policy", [&] { write(escapedForHtml(policyOf(script, style))); }},
        {"style", [&] { write(style); }},
        {"script", [&] { write(script); }},
        {"data", [&] { write(scriptSafe(pageJson(report, sound))); }},
        {"sound", [&] { writeSound(sound, write); }}};
    std::string_view rest = requireAsset(kTemplate);
    for (std::size_t open = rest.find("{{"); open != std::string_view::npos;
         open = rest.find("{{")) {
        const std::size_t close = rest.find("}}", open);
        write(rest.substr(0, open));
        fillings.at(rest.substr(open + 2, close - open - 2))();
        rest.remove_prefix(close + 2);
    }
    write(rest);
}

}  // namespace output
