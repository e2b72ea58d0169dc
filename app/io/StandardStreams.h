// SPDX-License-Identifier: MIT
#pragma once

namespace app {

/** Keeps results apart from everything else that is printed.
 *
 *  The library prints progress lines on standard output by its contract. So the descriptor that the caller gave as
 *  standard output is kept aside for results alone, and descriptor 1 leads away: to nowhere, or to standard error.
 *
 *  Make one before any file is opened: it also fills missing descriptors 0 to 2, so that no file of the tool is ever
 *  taken for a standard stream. */
class StandardStreams {
public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    /** The caller's standard output; -1 when the caller closed it. */
    int resultDescriptor() const { return resultDescriptor_; }

    /** From here on the library's lines appear on standard error. */
    static void showLibraryLines();

private:
    int resultDescriptor_ = -1;
};

}  // namespace app
