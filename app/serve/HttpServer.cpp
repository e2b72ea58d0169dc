// SPDX-License-Identifier: MIT
// Requests arrive whole (ConnectionGate), with heads and bodies of bounded length. The library,
// cpp-httplib, reads them and writes the answers; it never reads from a socket. Version 0.11 has no
// bound on the length of a line it reads, keeps a thread for each idle connection, and takes time
// without end from a client that sends a byte now and then.
#include "serve/HttpServer.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include <httplib.h>

#include "base/Interrupt.h"
#include "serve/Connection.h"
#include "serve/ConnectionGate.h"
#include "serve/Workers.h"

namespace app {

namespace {

// A browser asks for six things at once; answers that a slow client takes its time for are half of
// them at most, see Application.
constexpr int kThreads = 16;

/** Every answer says what a browser may do with it: pages load nothing from elsewhere, run no script
 *  of their text, stand in no frame; other sites read nothing and learn no address. */
httplib::Headers securityHeaders() {
    return {{"Content-Security-Policy",
             "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
             "connect-src 'self'; media-src 'self' blob:; base-uri 'none'; form-action 'none'; "
             "frame-ancestors 'none'"},
            {"X-Content-Type-Options", "nosniff"},
            {"X-Frame-Options", "DENY"},
            {"Referrer-Policy", "no-referrer"},
            {"Cross-Origin-Opener-Policy", "same-origin"},
            {"Cross-Origin-Resource-Policy", "same-origin"},
            {"Cross-Origin-Embedder-Policy", "require-corp"},
            {"Permissions-Policy", "camera=(), geolocation=(), microphone=()"},
            {"Cache-Control", "no-store"}};
}

/** A request that has arrived, and the socket that takes its answer. */
class ArrivedStream : public httplib::Stream {
public:
    using httplib::Stream::write;

    ArrivedStream(Connection& connection, std::size_t headBytes, const std::atomic<bool>& isStopped)
        : connection_(connection), headBytes_(headBytes), isStopped_(isStopped) {}

    bool is_readable() const override { return position_ < headBytes_; }
    bool is_writable() const override { return !isBroken_; }

    ssize_t read(char* bytes, size_t size) override {
        const std::size_t count = std::min(size, headBytes_ - position_);
        std::memcpy(bytes, connection_.received().data() + position_, count);
        position_ += count;
        return static_cast<ssize_t>(count);
    }

    ssize_t write(const char* bytes, size_t size) override {
        isBroken_ = isBroken_ || !connection_.send({bytes, size}, isStopped_);
        return isBroken_ ? -1 : static_cast<ssize_t>(size);
    }

    void get_remote_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
    void get_local_ip_and_port(std::string& /*ip*/, int& /*port*/) const override {}
    // Asked for only to see whether select() could watch it.
    socket_t socket() const override { return 0; }

private:
    Connection& connection_;
    std::size_t headBytes_;
    const std::atomic<bool>& isStopped_;
    std::size_t position_ = 0;
    bool isBroken_ = false;
};

HttpRequest requestOf(const httplib::Request& arrived) {
    HttpRequest request;
    request.method = arrived.method;
    request.path = arrived.path;
    request.parameters = arrived.params;
    request.body = arrived.body;
    request.host = arrived.get_header_value("Host");
    request.origin = arrived.get_header_value("Origin");
    request.fetchSite = arrived.get_header_value("Sec-Fetch-Site");
    request.cookies = arrived.get_header_value("Cookie");
    request.contentType = arrived.get_header_value("Content-Type");
    request.range = arrived.get_header_value("Range");
    return request;
}

void setWriter(httplib::Response& response, HttpReply& reply) {
    const auto write = [writer = std::move(reply.write)](httplib::DataSink& sink) {
        const auto take = [&sink](std::string_view bytes) {
            return bytes.empty() || sink.write(bytes.data(), bytes.size());
        };
        // An answer that has begun can only be cut off, which its client notices.
        try {
            return writer(take);
        } catch (...) {
            return false;
        }
    };
    if (reply.length) {
        response.set_content_provider(
            *reply.length, reply.type,
            [write](std::size_t, std::size_t, httplib::DataSink& sink) { return write(sink); });
        return;
    }
    response.set_chunked_content_provider(reply.type,
                                          [write](std::size_t, httplib::DataSink& sink) {
                                              if (!write(sink)) return false;
                                              sink.done();
                                              return true;
                                          });
}

void setReply(httplib::Response& response, HttpReply reply) {
    response.status = reply.status;
    for (const auto& [name, value] : reply.headers) response.set_header(name, value);
    if (reply.write) {
        setWriter(response, reply);
    } else if (!reply.type.empty()) {
        response.set_content(reply.body, reply.type);
    }
}

/** The library's part: from bytes to a request, from an answer to bytes. */
class Protocol : public httplib::Server {
public:
    explicit Protocol(HttpServer::Handler handler) : handler_(std::move(handler)) {
        // The library stops writing where it has no socket of its own.
        svr_sock_ = 0;
        set_default_headers(securityHeaders());
        set_pre_routing_handler(
            [this](const httplib::Request& request, httplib::Response& response) {
                setReply(response, answer(requestOf(request)));
                return HandlerResponse::Handled;
            });
    }
    ~Protocol() override { svr_sock_ = INVALID_SOCKET; }
    Protocol(const Protocol&) = delete;
    Protocol& operator=(const Protocol&) = delete;

    void serve(Connection& connection, const RequestFrame& frame) {
        ArrivedStream stream(connection, frame.headBytes, isStopped_);
        bool isClosed = false;
        process_request(stream, true, isClosed, [&](httplib::Request& request) {
            request.body = connection.received().substr(frame.headBytes, frame.bodyBytes);
            // Ranges are the answer's affair: the library would cut any answer into any number of
            // them. Nor is anything compressed that goes no further than this computer.
            request.ranges.clear();
            request.headers.erase("Accept-Encoding");
        });
    }

    void stopAll() { isStopped_ = true; }

private:
    HttpReply answer(const HttpRequest& request) const {
        try {
            return handler_(request);
        } catch (const base::Interrupted&) {
            return errorReply(503, "the program is ending");
        } catch (const std::exception& error) {
            return errorReply(500, error.what());
        }
    }

    HttpServer::Handler handler_;
    std::atomic<bool> isStopped_{false};
};

/** Answers that are under way end with the server, also when an exception ends it: the workers wait
 *  for them. */
class StopAtEnd {
public:
    explicit StopAtEnd(Protocol& protocol) : protocol_(protocol) {}
    ~StopAtEnd() { protocol_.stopAll(); }
    StopAtEnd(const StopAtEnd&) = delete;
    StopAtEnd& operator=(const StopAtEnd&) = delete;

private:
    Protocol& protocol_;
};

}  // namespace

void HttpServer::run() {
    Protocol protocol(handler_);
    Workers workers(kThreads);
    ConnectionGate gate(
        listening_, [&workers, &protocol](std::unique_ptr<Connection> arrived, RequestFrame frame) {
            const std::shared_ptr<Connection> connection = std::move(arrived);
            workers.add([&protocol, connection, frame] {
                try {
                    protocol.serve(*connection, frame);
                } catch (...) {
                    // Without memory for an answer there is none; the others go on.
                }
            });
        });
    const StopAtEnd stop(protocol);
    while (!base::Interrupt::isRequested()) gate.step();
}

}  // namespace app
