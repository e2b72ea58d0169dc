// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "beatatlas/track.h"
#include "track/Listener.h"

namespace beatatlas::track::inner {

/** One pass over the host's source: gathers its frames into blocks and scales them for sessions. */
class Pass {
public:
    /** Opens the source. @throws Failure when it asks to stop; std::bad_alloc */
    Pass(const BA_TrackSource& source, std::int64_t frames);
    ~Pass() { close(); }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

    /** The next block, valid until the next call; after the last one, a block without frames.
     *  Before it returns the last block it checks that the source ends there and closes it, because
     *  the analysis that the last block starts may take long.
     *  @throws Failure when the source asks to stop or has another length */
    Block next();

private:
    void fill(std::size_t frames);
    std::int64_t read(std::size_t at, std::int64_t frames);
    void checkEnd();
    void close();

    const BA_TrackSource& source_;
    std::int64_t framesLeft_;
    std::vector<float> left_;
    std::vector<float> right_;
    void* pass_;  // null: not open
};

}  // namespace beatatlas::track::inner
