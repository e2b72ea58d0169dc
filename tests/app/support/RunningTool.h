// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "support/TemporaryFolder.h"

namespace test {

/** What the tool finds when it is started. */
struct ToolLimits {
    /** Bytes that no file it writes may exceed. */
    std::optional<long> fileSize;
    /** Its caller ignores how its children end. */
    bool ignoresChildren = false;
};

/** The tool while it runs, so that things can be done to it. It ends with this object. */
class RunningTool {
public:
    using Limits = ToolLimits;

    explicit RunningTool(const std::vector<std::string>& arguments, const std::string& input = "",
                         const Limits& limits = {});
    ~RunningTool();
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;

    pid_t process() const { return process_; }

    /** Its worker processes that still run. */
    std::vector<pid_t> workers() const;

    /** Waits, some seconds at most, until it has so many workers that have begun to read a file
     *  below the folder. @return those; fewer when it took too long */
    std::vector<pid_t> awaitReaders(std::size_t count, const std::string& folder) const;

    void signal(int number) const;

    /** Waits for its end. @return its exit status; 1000 and the signal's number when a signal
     *  killed it. @throws std::runtime_error when it hangs */
    int wait();

    std::string out() const { return readFile(folder_.file("out")); }
    std::string err() const { return readFile(folder_.file("err")); }

private:
    TemporaryFolder folder_;
    pid_t process_ = -1;
};

}  // namespace test
