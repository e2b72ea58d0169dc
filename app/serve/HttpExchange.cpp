// SPDX-License-Identifier: MIT
#include "serve/HttpExchange.h"

#include <nlohmann/json.hpp>

namespace app {

HttpReply errorReply(int status, const std::string& sentence) {
    HttpReply reply = jsonReply(nlohmann::json{{"error", sentence}}.dump());
    reply.status = status;
    return reply;
}

HttpReply jsonReply(std::string json) {
    HttpReply reply;
    reply.type = "application/json";
    reply.body = std::move(json);
    return reply;
}

}  // namespace app
