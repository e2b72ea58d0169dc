// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "catalogue/Analysed.h"

namespace app {

/** @name What a scan and its workers tell each other
 *  Each message is a frame: its length in four bytes, the low one first, and that many bytes of
 *  CBOR. A worker is given WorkerOrders once, and a WorkerTask each time it has said WorkerReady.
 *  For each it tells WorkerProgress any number of times and ends with catalogue::Analysed or
 *  catalogue::Failure. A task whose sound may be known is hashed first: the worker tells WorkerHash
 *  and waits for WorkerVerdict, which may end the task.
 *  @{ */

/** How to analyse all files. */
struct WorkerOrders {
    /** As catalogue::parametersText() has them. */
    std::string parameters;
    bool acceptsCutOff = false;
    bool isVerbose = false;
    /** Bytes that one file may take. */
    std::int64_t memoryLimit = 0;
};

struct WorkerTask {
    std::string path;
    bool mayBeKnown = false;
};

/** Whether the file whose hash was told is still to be analysed. */
struct WorkerVerdict {
    bool goesOn = true;
};

struct WorkerReady {};

struct WorkerProgress {
    double fraction = 0.0;
    /** Length of the track; 0 while it is not known. */
    double seconds = 0.0;
};

struct WorkerHash {
    catalogue::FileState state;
    catalogue::AudioHash hash{};
    base::TrackFormat format;
};

using WorkerAnswer =
    std::variant<WorkerReady, WorkerProgress, WorkerHash, catalogue::Analysed, catalogue::Failure>;

std::string frameOf(const WorkerOrders& orders);
std::string frameOf(const WorkerTask& task);
std::string frameOf(const WorkerVerdict& verdict);
std::string frameOf(const WorkerAnswer& answer);

/** @throws std::exception when the bytes of a frame are no such message */
WorkerOrders ordersOf(std::string_view frame);
WorkerTask taskOf(std::string_view frame);
WorkerVerdict verdictOf(std::string_view frame);
WorkerAnswer answerOf(std::string_view frame);

/** @} */

/** Puts frames together again from the bytes of a pipe. */
class FrameGatherer {
public:
    void put(std::string_view bytes) { waiting_ += bytes; }

    /** The next whole frame without its length; nothing while it is not complete.
     *  @throws std::runtime_error for a length that no message has */
    std::optional<std::string> take();

private:
    std::string waiting_;
};

}  // namespace app
