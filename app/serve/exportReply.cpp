// SPDX-License-Identifier: MIT
#include "serve/exportReply.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/Interrupt.h"
#include "catalogue/Catalogue.h"
#include "output/list/ListWriter.h"
#include "serve/trackFilter.h"

namespace app {

namespace {

constexpr std::size_t kBufferBytes = 65536;

using Ids = std::vector<std::int64_t>;

struct Form {
    output::ListFormat format;
    const char* ending;
    const char* mediaType;
};

Form formOf(const HttpRequest& request) {
    const std::string name = request.parameter("format").value_or("");
    if (name == "m3u8") return {output::ListFormat::playlist, "m3u8", "audio/x-mpegurl"};
    if (name == "csv") return {output::ListFormat::csv, "csv", "text/csv; charset=utf-8"};
    if (name == "json") return {output::ListFormat::jsonLines, "json", "application/json"};
    throw BadRequest("a list is exported as m3u8, csv or json");
}

/** The numbers in the body; nothing for a request without one. @throws BadRequest */
std::optional<Ids> chosenIds(const HttpRequest& request) {
    if (request.body.empty()) return std::nullopt;
    const auto json = nlohmann::json::parse(request.body, nullptr, false);
    if (!json.is_object() || !json.contains("ids") || !json["ids"].is_array())
        throw BadRequest("the chosen tracks are a list of numbers");
    Ids ids;
    for (const auto& id : json["ids"]) {
        if (!id.is_number_integer()) throw BadRequest("the chosen tracks are a list of numbers");
        ids.push_back(id.get<std::int64_t>());
    }
    return ids;
}

/** The client takes no more. */
struct Unwanted {};

/** Gathers what a list's writer writes; turns lines of JSON into one list. */
class ListText {
public:
    ListText(bool isJson, const ByteSink& sink) : isJson_(isJson), sink_(sink) {}

    void add(std::string_view text) {
        base::Interrupt::check();
        if (isJson_) {
            buffer_ += lines_++ == 0 ? "[\n" : ",\n";
            text.remove_suffix(1);
        }
        buffer_ += text;
        if (buffer_.size() >= kBufferBytes) flush();
    }

    void end() {
        if (isJson_) buffer_ += lines_ == 0 ? "[]\n" : "\n]\n";
        flush();
    }

private:
    void flush() {
        if (!sink_(buffer_)) throw Unwanted();
        buffer_.clear();
    }

    bool isJson_;
    const ByteSink& sink_;
    std::string buffer_;
    std::int64_t lines_ = 0;
};

struct Export {
    Form form;
    TrackFilter filter;
    std::optional<Ids> ids;

    void list(const catalogue::Catalogue& catalogue, output::ListWriter& writer) const {
        const auto add = [&writer](const auto& entry) { writer.add(entry); };
        if (filter.wantsFailures) {
            writer.beginFailures();
            return listFailures(catalogue, filter.query.isReversed, std::nullopt, add);
        }
        writer.beginTracks();
        if (ids) return listChosen(catalogue, *ids, add);
        listTracks(catalogue, filter.query, add);
    }
};

bool writeList(const catalogue::Catalogue& catalogue, const Export& wanted, const ByteSink& sink) {
    ListText text(wanted.form.format == output::ListFormat::jsonLines, sink);
    const auto writer = makeListWriter(
        wanted.form.format, [&text](std::string_view line) { text.add(line); }, std::nullopt);
    try {
        wanted.list(catalogue, *writer);
        text.end();
        return true;
    } catch (const Unwanted&) {
        return false;
    }
}

}  // namespace

HttpReply exportReply(const std::string& path, const HttpRequest& request) {
    const auto catalogue =
        std::make_shared<catalogue::Catalogue>(path, catalogue::Catalogue::Access::read);
    const Export wanted{formOf(request), filterOf(request, *catalogue), chosenIds(request)};
    HttpReply reply;
    reply.type = wanted.form.mediaType;
    reply.headers.emplace_back("Content-Disposition",
                               std::string("attachment; filename=\"tracks.") + wanted.form.ending +
                                   "\"");
    reply.write = [catalogue, wanted](const ByteSink& sink) {
        return writeList(*catalogue, wanted, sink);
    };
    return reply;
}

}  // namespace app
