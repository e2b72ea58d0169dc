// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace catalogue {

/** Writes the bytes of a blob. Integers are varints: seven bits a byte, the lowest first, the
 *  highest bit set in all but the last; signed ones zigzag (0, -1, 1, -2 … as 0, 1, 2, 3 …). */
class BlobWriter {
public:
    void byte(std::uint8_t value) { bytes_ += static_cast<char>(value); }
    void natural(std::uint64_t value);
    void integer(std::int64_t value);

    /** Eight bytes, the lowest first: the bits of the number. */
    void real(double value);
    /** Four bytes. */
    void real(float value);

    /** The blob: a byte that says how it is kept, 1 for plain, 2 for a zlib stream, then the bytes.
     *  Compressed where that saves at least a tenth. */
    std::string blob() const;

private:
    std::string bytes_;
};

/** Reads what a BlobWriter wrote. Any bytes may be given; what is not a whole blob is refused. */
class BlobReader {
public:
    /** @throws DamagedRecord for a form that is not known, or a broken stream */
    explicit BlobReader(std::string_view blob);

    /** @name @throws DamagedRecord behind the last byte
     *  @{ */
    std::uint8_t byte();
    std::uint64_t natural();
    std::int64_t integer();
    double real();
    float shortReal();

    /** A number of things, each of which takes a byte at least. */
    std::size_t count();
    /** @} */

    /** @throws DamagedRecord when bytes are left */
    void end() const;

private:
    template <class Bits>
    Bits bits();

    std::string inflated_;
    std::string_view rest_;
};

}  // namespace catalogue
