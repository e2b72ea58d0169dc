// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace beatatlas {

struct CFree {
    void operator()(void* block) const { std::free(block); }
};

/** An owned array of the C allocator, where a shortage is answered with a message and not with an
 *  exception. */
template <typename T>
using CArray = std::unique_ptr<T[], CFree>;

/** Zeroed; null when there is no memory. */
template <typename T>
CArray<T> allocateOrNull(std::int64_t entries) {
    return CArray<T>(static_cast<T*>(std::calloc(static_cast<std::size_t>(entries), sizeof(T))));
}

}  // namespace beatatlas
