// SPDX-License-Identifier: MIT
#include "output/formats/MidiExport.h"

#include <algorithm>
#include <bit>

#include "output/formats/midi/tempoMap.h"
#include "output/formats/trackNames.h"

namespace output {

namespace {

// General MIDI's percussion channel and its wood blocks.
constexpr int kNoteOn = 0x99;
constexpr int kNoteOff = 0x89;
constexpr int kHighBlock = 76;
constexpr int kLowBlock = 77;
constexpr int kDownbeatVelocity = 127;
constexpr int kBeatVelocity = 96;
constexpr std::int64_t kClickTicks = kTicksPerQuarter / 8;

constexpr int kMetaText = 0x01;
constexpr int kMetaName = 0x03;
constexpr int kMetaEnd = 0x2F;
constexpr int kMetaTempo = 0x51;
constexpr int kMetaMetre = 0x58;
constexpr std::int64_t kLongestDelta = 0x0FFFFFFF;  // 28 bits

std::string bigEndian(std::uint64_t value, int count) {
    std::string bytes;
    for (int i = count - 1; i >= 0; --i) bytes += static_cast<char>((value >> (8 * i)) & 0xFFU);
    return bytes;
}

/** Seven bits a byte, all but the last marked. */
std::string variableLength(std::uint64_t value) {
    std::string bytes(1, static_cast<char>(value & 0x7FU));
    while ((value >>= 7U) != 0)
        bytes.insert(bytes.begin(), static_cast<char>((value & 0x7FU) | 0x80U));
    return bytes;
}

/** One chunk of a file: events in order of time. */
class MidiTrack {
public:
    void addMeta(std::int64_t tick, int kind, const std::string& data) {
        moveTo(tick);
        bytes_ += bigEndian(0xFF, 1) + bigEndian(static_cast<std::uint64_t>(kind), 1) +
                  variableLength(data.size()) + data;
    }

    void addNote(std::int64_t tick, int status, int note, int velocity) {
        moveTo(tick);
        for (const int value : {status, note, velocity})
            bytes_ += bigEndian(static_cast<std::uint64_t>(value), 1);
    }

    std::string chunk() const { return "MTrk" + bigEndian(bytes_.size(), 4) + bytes_; }

private:
    void moveTo(std::int64_t tick) {
        // Longer than any event may wait: an empty text passes the time.
        for (; tick - tick_ > kLongestDelta; tick_ += kLongestDelta)
            bytes_ += variableLength(kLongestDelta) + bigEndian(0xFF, 1) + bigEndian(kMetaText, 1) +
                      variableLength(0);
        bytes_ += variableLength(static_cast<std::uint64_t>(tick - tick_));
        tick_ = tick;
    }

    std::int64_t tick_ = 0;
    std::string bytes_;
};

std::string metreData(const MetreEvent& metre) {
    constexpr int kClocksPerQuarter = 24;
    constexpr int kThirtySecondsPerQuarter = 8;
    const int power = std::bit_width(static_cast<unsigned>(metre.denominator)) - 1;
    std::string data;
    for (const int value : {metre.beats, power, kClocksPerQuarter, kThirtySecondsPerQuarter})
        data += static_cast<char>(value);
    return data;
}

MidiTrack tempoTrack(const TempoMap& map, const TrackReport& report) {
    MidiTrack track;
    track.addMeta(0, kMetaName, trackName(report));
    if (!report.corrections.empty())
        track.addMeta(0, kMetaText, "Corrected by hand: " + correctionsText(report));
    auto tempo = map.tempos.begin();
    auto metre = map.metres.begin();
    while (tempo != map.tempos.end() || metre != map.metres.end()) {
        const bool isMetre =
            metre != map.metres.end() && (tempo == map.tempos.end() || metre->tick <= tempo->tick);
        if (isMetre) {
            track.addMeta(metre->tick, kMetaMetre, metreData(*metre));
            ++metre;
        } else {
            track.addMeta(tempo->tick, kMetaTempo,
                          bigEndian(static_cast<std::uint64_t>(tempo->microseconds), 3));
            ++tempo;
        }
    }
    track.addMeta(map.endTick, kMetaEnd, "");
    return track;
}

MidiTrack clickTrack(const TempoMap& map) {
    MidiTrack track;
    track.addMeta(0, kMetaName, "Click");
    std::int64_t end = map.endTick;
    for (const ClickEvent& click : map.clicks) {
        const int note = click.isDownbeat ? kHighBlock : kLowBlock;
        track.addNote(click.tick, kNoteOn, note,
                      click.isDownbeat ? kDownbeatVelocity : kBeatVelocity);
        track.addNote(click.tick + kClickTicks, kNoteOff, note, 0);
        end = std::max(end, click.tick + kClickTicks);
    }
    track.addMeta(end, kMetaEnd, "");
    return track;
}

}  // namespace

void MidiExport::add(const TrackReport& report, const Peaks*) {
    constexpr int kHeaderBytes = 6;
    constexpr int kSimultaneousTracks = 1;
    const double end = report.startSeconds() + report.analysis.seconds();
    const TempoMap map = layTempoMap(report.analysis.beats, end);
    const std::string header = "MThd" + bigEndian(kHeaderBytes, 4) +
                               bigEndian(kSimultaneousTracks, 2) + bigEndian(2, 2) +
                               bigEndian(kTicksPerQuarter, 2);
    write_(header + tempoTrack(map, report).chunk() + clickTrack(map).chunk());
}

}  // namespace output
