// SPDX-License-Identifier: MIT
#include "serve/Application.h"

#include <memory>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/errors.h"
#include "catalogue/CatalogueError.h"
#include "serve/exportReply.h"
#include "serve/trackFilter.h"
#include "web/assets.h"

namespace app {

namespace {

constexpr std::string_view kTrackPrefix = "/api/tracks/";
constexpr std::string_view kWebPrefix = "/web/";

// Answers whose client decides how long they take. The rest of the server's threads stay free.
constexpr int kMostSlowReplies = 8;

HttpReply notFound() {
    return errorReply(404, "there is nothing at this address");
}

HttpReply wrongMethod(const char* allowed) {
    HttpReply reply = errorReply(405, "this address takes another method");
    reply.headers.emplace_back("Allow", allowed);
    return reply;
}

HttpReply assetReply(std::string_view name) {
    const web::Asset* asset = web::findAsset(name);
    if (asset == nullptr) return notFound();
    HttpReply reply;
    reply.type = asset->mediaType;
    reply.body = asset->bytes;
    return reply;
}

/** Scripts and styles. The pages beside them have addresses of their own, or are filled in first. */
HttpReply partReply(std::string_view name) {
    return name.ends_with(".html") ? notFound() : assetReply(name);
}

}  // namespace

Application::Application(std::string path, const Access& access)
    : path_(std::move(path)), access_(access), lists_(path_), tracks_(path_) {}

HttpReply Application::answer(const HttpRequest& request) {
    if (auto refusal = access_.refusal(request)) return std::move(*refusal);
    try {
        return answerAdmitted(request);
    } catch (const BadRequest& error) {
        return errorReply(400, error.what());
    } catch (const base::TrackError& error) {
        return errorReply(409, std::string("the track ") + error.what());
    } catch (const catalogue::CatalogueError& error) {
        return errorReply(503, error.what());
    }
}

HttpReply Application::answerAdmitted(const HttpRequest& request) {
    const std::string& path = request.path;
    if (path.starts_with(kTrackPrefix)) return answerTrack(request);
    if (path == "/api/export") return held([&] { return exportReply(path_, request); });
    if (!request.isReading()) return wrongMethod("GET, HEAD");
    if (path == "/") return assetReply("library.html");
    if (path.starts_with(kWebPrefix)) return partReply(path.substr(kWebPrefix.size()));
    if (path == "/api/tracks") return jsonReply(lists_.page(request).dump());
    if (path == "/api/strips") return jsonReply(lists_.strips(request).dump());
    if (path == "/api/scan") return jsonReply(lists_.totals().dump());
    return notFound();
}

HttpReply Application::answerTrack(const HttpRequest& request) {
    const std::string rest = request.path.substr(kTrackPrefix.size());
    const std::size_t slash = rest.find('/');
    const auto track = trackNumber(rest.substr(0, slash));
    if (!track) return notFound();
    return dispatchTrack(request, *track, slash == std::string::npos ? "" : rest.substr(slash + 1));
}

HttpReply Application::dispatchTrack(const HttpRequest& request, StoredTracks::Id track,
                                     const std::string& what) {
    if (what == "corrections" || what == "undo") {
        if (request.isReading()) return wrongMethod("POST");
        return what == "undo" ? tracks_.undo(track) : tracks_.correct(track, request.body);
    }
    if (!request.isReading()) return wrongMethod("GET, HEAD");
    if (what.empty()) return tracks_.view(track);
    if (what == "audio") return held([&] { return tracks_.file(track, request.range); });
    if (what == "sound") return held([&] { return tracks_.sound(track); });
    return notFound();
}

/** The answer with a place for as long as it is being sent. The place is taken first: what there is
 *  none for is not even opened. */
HttpReply Application::held(const std::function<HttpReply()>& make) {
    const auto leave = [](std::atomic<int>* count) { --*count; };
    ++slowReplies_;
    const std::shared_ptr<std::atomic<int>> place(&slowReplies_, leave);
    if (slowReplies_ > kMostSlowReplies) {
        HttpReply busy = errorReply(503, "too much is being sent already");
        busy.headers.emplace_back("Retry-After", "1");
        return busy;
    }
    HttpReply reply = make();
    if (!reply.write) return reply;
    reply.write = [place, write = std::move(reply.write)](const ByteSink& sink) {
        return write(sink);
    };
    return reply;
}

}  // namespace app
