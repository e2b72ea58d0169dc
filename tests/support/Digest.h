// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace beatatlas::test {

/** FNV-1a (Fowler, Noll, Vo), 64 bits: compares results that have too many bits to write down. */
class Digest {
public:
    void add(std::uint32_t word) {
        for (int shift = 0; shift < 32; shift += 8) {
            value_ ^= (word >> shift) & 0xFFU;
            value_ *= 0x100000001B3U;
        }
    }
    /** Adds the bits of each float, so that -0 and 0 differ. */
    void add(const std::vector<float>& values);

    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325U;
};

}  // namespace beatatlas::test
