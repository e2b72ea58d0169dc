// SPDX-License-Identifier: MIT
#pragma once

namespace app {

/** Keeps results apart from everything else that is printed.
 *
 *  Libraries may print on standard output. Therefore the caller's standard output is kept on
 *  another descriptor for results alone, and descriptor 1 leads nowhere.
 *
 *  Create it before any file is opened: it also fills missing descriptors 0 to 2, so that no file
 *  of the tool is taken for a standard stream. */
class StandardStreams {
public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    /** The caller's standard output; -1 when the caller closed it. */
    int resultDescriptor() const { return resultDescriptor_; }

private:
    int resultDescriptor_ = -1;
};

}  // namespace app
