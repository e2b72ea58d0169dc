// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>

namespace media {

/** Memory for samples, cut from blocks as large as a huge page of memory.
 *
 *  A track takes a hundred megabytes that are filled once and read once or twice. In pages of the
 *  usual 4 KiB, allocating them takes a quarter of the time of decoding; in huge pages, where the
 *  system has them, next to nothing. */
class PcmMemory {
public:
    /** A piece, aligned for vectors. Its block is freed with the last piece cut from it.
     *  @throws std::bad_alloc */
    std::shared_ptr<std::byte> take(std::size_t bytes);

private:
    std::shared_ptr<std::byte> block_;
    std::size_t size_ = 0;
    std::size_t used_ = 0;
};

}  // namespace media
