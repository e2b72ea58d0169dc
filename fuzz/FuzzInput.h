// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace beatatlas::fuzz {

/** Reads a fuzzer's bytes as values. After the last byte it returns 0, so that every input is
 *  valid. */
class FuzzInput {
public:
    FuzzInput(const std::uint8_t* bytes, std::size_t count) : bytes_(bytes), left_(count) {}

    bool isEmpty() const { return left_ == 0; }
    std::size_t bytesLeft() const { return left_; }

    std::uint8_t byte() {
        if (left_ == 0) return 0;
        --left_;
        return *bytes_++;
    }

    bool flag() { return (byte() & 1) != 0; }

    std::uint16_t bits16() { return static_cast<std::uint16_t>(byte() | byte() << 8); }
    std::uint32_t bits32() {
        const std::uint32_t low = bits16();
        return low | static_cast<std::uint32_t>(bits16()) << 16;
    }

    int anyInt() { return static_cast<std::int32_t>(bits32()); }
    /** Any bit pattern: NaN, infinities and denormals included. */
    float anyFloat() { return std::bit_cast<float>(bits32()); }

    /** first … last; the range has at most 65536 values. */
    int between(int first, int last) {
        const auto values = static_cast<unsigned>(last - first + 1);
        const unsigned drawn = values <= 256 ? byte() : bits16();
        return first + static_cast<int>(drawn % values);
    }

    /** One of the choices. */
    template <class T, std::size_t count>
    T oneOf(const T (&choices)[count]) {
        static_assert(count <= 256);
        return choices[byte() % count];
    }

private:
    const std::uint8_t* bytes_;
    std::size_t left_;
};

}  // namespace beatatlas::fuzz
