// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include <sys/types.h>

#include "scan/workerFrames.h"

namespace app {

/** A worker as the scan sees it: this program executed anew, with a pipe each way. It ends with
 *  this object, and with this process. */
class WorkerProcess {
public:
    /** @throws std::system_error when the system has no process or pipe to give */
    explicit WorkerProcess(const WorkerOrders& orders);
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    /** Readable when an answer, or the worker's end, has come. */
    int descriptor() const { return answers_; }

    /** To a worker that has ended nothing is given; its end shows in receive(). */
    void give(const std::string& frame) const;

    /** Takes what has come, without waiting. @return false when the worker has ended */
    bool receive();

    /** @throws std::exception when what came is no answer */
    std::optional<WorkerAnswer> take();

    /** Ends it and tells how it ended by itself, "was killed by signal 11 (Segmentation fault)". */
    std::string end();

private:
    std::optional<int> stop();
    std::optional<int> wait() const;

    pid_t process_ = -1;
    int orders_ = -1;
    int answers_ = -1;
    FrameGatherer frames_;
};

}  // namespace app
