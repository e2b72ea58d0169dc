// SPDX-License-Identifier: MIT
#include "serve/ServedCatalogue.h"

#include <chrono>
#include <thread>

#include <sys/stat.h>

#include "scan/fileState.h"

namespace test {

namespace {

/** The line that the program prints once it listens; "" when that takes ten seconds. */
std::string awaitLine(const RunningTool& tool) {
    for (int i = 0; i < 1000; ++i) {
        const std::string out = tool.out();
        if (out.ends_with('\n')) return out.substr(0, out.size() - 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return "";
}

}  // namespace

void ServedCatalogue::start(const std::vector<std::string>& options) {
    std::vector<std::string> arguments = {"serve", "--catalogue", path_};
    arguments.insert(arguments.end(), options.begin(), options.end());
    tool_.reset();
    tool_ = std::make_unique<RunningTool>(arguments);
    address_ = awaitLine(*tool_);
    const std::size_t colon = address_.rfind(':');
    ASSERT_NE(colon, std::string::npos) << tool_->err();
    port_ = std::stoi(address_.substr(colon + 1));
    const std::string target = address_.substr(address_.find("/?"));
    const Answer admission =
        sendAndReceive(port_, "GET " + target + " HTTP/1.1\r\nHost: " + host() + "\r\n\r\n");
    const std::string cookie = admission.header("Set-Cookie");
    cookie_ = cookie.substr(0, cookie.find(';'));
}

std::string ServedCatalogue::bytesOf(const std::string& method, const std::string& target,
                                     const std::string& body, const Headers& other) const {
    Headers headers = {{"Host", host()}, {"Cookie", cookie_}};
    if (method == "POST") {
        headers["Origin"] = "http://" + host();
        headers["Content-Type"] = "application/json";
        headers["Content-Length"] = std::to_string(body.size());
    }
    for (const auto& [name, value] : other) headers[name] = value;
    std::string bytes = method + " " + target + " HTTP/1.1\r\n";
    for (const auto& [name, value] : headers) {
        if (!value.empty()) bytes += name + ": " + value + "\r\n";
    }
    return bytes + "\r\n" + body;
}

Answer ServedCatalogue::request(const std::string& method, const std::string& target,
                                const std::string& body, const Headers& other) const {
    return sendAndReceive(port_, bytesOf(method, target, body, other));
}

std::string ServedCatalogue::numberOf(const std::string& end) const {
    const nlohmann::json list = get("/api/tracks").json();
    for (const auto& track : list["tracks"]) {
        if (track["file"].get<std::string>().ends_with(end)) return track["id"].dump();
    }
    ADD_FAILURE() << "no track ends with " << end;
    return "0";
}

catalogue::FileState stateOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return app::fileStateOf(status);
}

}  // namespace test
