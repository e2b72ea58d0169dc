// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "io/ResultStream.h"
#include "scan/workerFrames.h"

namespace app {

/** A worker of a scan: analyses the files it is given, one after the other, until there are no
 *  more. It is a process of its own, so that a decoder that crashes, hangs or takes all memory costs
 *  the file it was reading and nothing else. */
class FileWorker {
public:
    /** @param orders   a descriptor that tasks are read from
     *  @param answers  takes what is found */
    FileWorker(int orders, ResultStream& answers) : descriptor_(orders), answers_(answers) {}

    /** @throws OutputError when nobody takes the answers any more */
    void run();

private:
    std::optional<std::string> awaitFrame();
    void prepare() const;
    void work(const WorkerTask& task);
    void analyse(const WorkerTask& task);
    bool isToBeAnalysed(const WorkerTask& task, const catalogue::FileState& state);
    void answer(const WorkerAnswer& answer) { answers_.write(frameOf(answer)); }

    int descriptor_;
    ResultStream& answers_;
    FrameGatherer frames_;
    WorkerOrders orders_;
};

}  // namespace app
