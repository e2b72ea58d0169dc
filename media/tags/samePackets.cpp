// SPDX-License-Identifier: MIT
#include "media/tags/samePackets.h"

#include <algorithm>

#include "base/Interrupt.h"
#include "media/Container.h"
#include "media/FileInput.h"

namespace media {

namespace {

/** A file's packets, one after the other. */
class Packets {
public:
    explicit Packets(const std::string& path)
        : input_(path), container_(input_), packet_(makePacket()) {}

    bool next() {
        av_packet_unref(packet_.get());
        return container_.next(*packet_);
    }

    const AVPacket& packet() const { return *packet_; }
    const AVStream& stream() const { return container_.stream(); }
    int failure() const { return container_.failure(); }

private:
    FileInput input_;
    Container container_;
    PacketPointer packet_;
};

bool areSame(const std::uint8_t* one, int oneSize, const std::uint8_t* other, int otherSize) {
    return std::equal(one, one + oneSize, other, other + otherSize);
}

bool areSame(const AVStream& one, const AVStream& other) {
    const AVCodecParameters& a = *one.codecpar;
    const AVCodecParameters& b = *other.codecpar;
    return a.codec_id == b.codec_id && a.initial_padding == b.initial_padding &&
           one.duration == other.duration &&
           areSame(a.extradata, a.extradata_size, b.extradata, b.extradata_size);
}

bool areSame(const AVPacket& one, const AVPacket& other) {
    return one.pts == other.pts && one.duration == other.duration &&
           areSame(one.data, one.size, other.data, other.size);
}

}  // namespace

bool haveSamePackets(const std::string& one, const std::string& other) {
    Packets first(one);
    Packets second(other);
    if (!areSame(first.stream(), second.stream())) return false;
    for (;;) {
        base::Interrupt::check();
        const bool hasFirst = first.next();
        if (hasFirst != second.next()) return false;
        if (!hasFirst) return first.failure() == second.failure();
        if (!areSame(first.packet(), second.packet())) return false;
    }
}

}  // namespace media
