// SPDX-License-Identifier: MIT
#include "catalogue/Blob.h"

#include <bit>
#include <new>
#include <type_traits>

#include <zlib.h>

#include "catalogue/CatalogueError.h"

namespace catalogue {

namespace {

constexpr std::uint8_t kPlain = 1;
constexpr std::uint8_t kDeflated = 2;

constexpr unsigned kVarintBits = 7;
constexpr unsigned kMoreFollows = 1U << kVarintBits;
constexpr unsigned kNaturalBits = 64;
constexpr unsigned kByteBits = 8;

// More than any grid or wave of the longest track takes; a broken blob asks for no more memory.
constexpr std::size_t kMostBytes = std::size_t{1} << 28;

[[noreturn]] void refuse() {
    throw DamagedRecord("a beat grid or a wave in the catalogue is damaged");
}

std::string deflated(const std::string& bytes) {
    uLongf length = compressBound(static_cast<uLong>(bytes.size()));
    std::string stream(length, '\0');
    const int status = compress2(reinterpret_cast<Bytef*>(stream.data()), &length,
                                 reinterpret_cast<const Bytef*>(bytes.data()),
                                 static_cast<uLong>(bytes.size()), Z_DEFAULT_COMPRESSION);
    if (status != Z_OK) throw std::bad_alloc();
    stream.resize(length);
    return stream;
}

struct EndInflation {
    z_stream& stream;
    ~EndInflation() { inflateEnd(&stream); }
};

std::string inflated(std::string_view bytes) {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) throw std::bad_alloc();
    const EndInflation end{stream};
    stream.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string out;
    int status = Z_OK;
    while (status == Z_OK && out.size() < kMostBytes) {
        constexpr std::size_t kStep = 65536;
        const std::size_t done = out.size();
        out.resize(done + kStep);
        stream.next_out = reinterpret_cast<Bytef*>(out.data() + done);
        stream.avail_out = static_cast<uInt>(kStep);
        status = inflate(&stream, Z_NO_FLUSH);
        out.resize(done + kStep - stream.avail_out);
    }
    if (status != Z_STREAM_END || stream.avail_in != 0) refuse();
    return out;
}

template <class Bits>
void appendBits(std::string& bytes, Bits bits) {
    for (std::size_t i = 0; i < sizeof bits; ++i)
        bytes += static_cast<char>(static_cast<std::uint8_t>(bits >> (kByteBits * i)));
}

}  // namespace

void BlobWriter::natural(std::uint64_t value) {
    while (value >= kMoreFollows) {
        byte(static_cast<std::uint8_t>(value | kMoreFollows));
        value >>= kVarintBits;
    }
    byte(static_cast<std::uint8_t>(value));
}

void BlobWriter::integer(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    natural(value < 0 ? ~(bits << 1U) : bits << 1U);
}

void BlobWriter::real(double value) {
    appendBits(bytes_, std::bit_cast<std::uint64_t>(value));
}

void BlobWriter::real(float value) {
    appendBits(bytes_, std::bit_cast<std::uint32_t>(value));
}

std::string BlobWriter::blob() const {
    const std::string stream = deflated(bytes_);
    const bool pays = stream.size() + stream.size() / 9 < bytes_.size();
    return static_cast<char>(pays ? kDeflated : kPlain) + (pays ? stream : bytes_);
}

BlobReader::BlobReader(std::string_view blob) {
    if (blob.empty() || blob.size() > kMostBytes) refuse();
    const auto form = static_cast<std::uint8_t>(blob.front());
    rest_ = blob.substr(1);
    if (form == kDeflated) {
        inflated_ = inflated(rest_);
        rest_ = inflated_;
    } else if (form != kPlain) {
        refuse();
    }
}

std::uint8_t BlobReader::byte() {
    if (rest_.empty()) refuse();
    const auto value = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return value;
}

std::uint64_t BlobReader::natural() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < kNaturalBits; shift += kVarintBits) {
        const unsigned next = byte();
        value |= static_cast<std::uint64_t>(next & (kMoreFollows - 1U)) << shift;
        if (next < kMoreFollows) return value;
    }
    refuse();
}

std::int64_t BlobReader::integer() {
    const std::uint64_t bits = natural();
    const std::uint64_t half = bits >> 1U;
    return static_cast<std::int64_t>((bits & 1U) != 0 ? ~half : half);
}

template <class Bits>
Bits BlobReader::bits() {
    Bits value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
        value |= static_cast<Bits>(byte()) << (kByteBits * i);
    return value;
}

double BlobReader::real() {
    return std::bit_cast<double>(bits<std::uint64_t>());
}

float BlobReader::shortReal() {
    return std::bit_cast<float>(bits<std::uint32_t>());
}

std::size_t BlobReader::count() {
    const std::uint64_t things = natural();
    if (things > rest_.size()) refuse();
    return static_cast<std::size_t>(things);
}

void BlobReader::end() const {
    if (!rest_.empty()) refuse();
}

}  // namespace catalogue
