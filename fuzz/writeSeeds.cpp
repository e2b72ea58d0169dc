// SPDX-License-Identifier: MIT
// writeSeeds FOLDER: writes the seeds of each fuzz target to FOLDER/<target>. Noise for targets
// that read bytes as calls, a short file of every format for the decoder, one of each form for the
// reader of beats. The same on every run; earlier contents are removed.
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "support/AudioFileWriter.h"
#include "support/Sounds.h"
#include "support/TemporaryFolder.h"

namespace {

using test::FileKind;

constexpr int kNoiseSeeds = 40;
constexpr double kTrackSeconds = 0.12;

void makeEmpty(const std::filesystem::path& folder) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
}

void writeNoise(const std::filesystem::path& folder, std::uint32_t state) {
    makeEmpty(folder);
    for (int i = 0; i < kNoiseSeeds; ++i) {
        std::string bytes(std::size_t{32} << (i % 6), '\0');
        for (char& byte : bytes) {
            state = state * 1664525U + 1013904223U;
            byte = static_cast<char>(state >> 24);
        }
        test::writeFile(folder / ("noise" + std::to_string(i)), bytes);
    }
}

struct Seed {
    const char* name;
    FileKind kind;
};

constexpr Seed kSeeds[] = {
    {"wave", {"wav", "pcm_s16le"}},
    {"wave24", {"wav", "pcm_s24le"}},
    {"wave64", {"w64", "pcm_s16le"}},
    {"aiff", {"aiff", "pcm_s16be"}},
    {"flac", {"flac", "flac"}},
    {"mp3", {"mp3", "libmp3lame"}},
    {"mp3bare", {"mp3", "libmp3lame", "write_xing=0"}},
    {"mp3cover", {"mp3", "libmp3lame", "", true}},
    {"vorbis", {"ogg", "libvorbis"}},
    {"opus", {"ogg", "libopus"}},
    {"m4a", {"ipod", "aac"}},
    {"alac", {"ipod", "alac"}},
    {"adts", {"adts", "aac"}},
    {"matroska", {"matroska", "libopus"}},
    {"wma", {"asf", "wmav2"}},
};

void writeTracks(const std::filesystem::path& folder) {
    makeEmpty(folder);
    for (const auto& [name, kind] : kSeeds) {
        for (const int channels : {1, 2}) {
            const auto file = folder / (name + std::to_string(channels));
            test::writeAudioFile(file, kind,
                                 test::tone(48000, channels, kTrackSeconds, 440.0, 0.5));
        }
    }
}

/** One of each form in which beats are told. */
void writeBeatSheets(const std::filesystem::path& folder) {
    makeEmpty(folder);
    test::writeFile(folder / "list", "# beats\n0.5 1\n1.0 2\n1.5 3\n2.0 1\n");
    test::writeFile(folder / "labels",
                    "0.500000\t0.500000\t1.1\n1.000000\t1.000000\t1.2\n\\\t100\t200\n");
    test::writeFile(
        folder / "result",
        R"({"format":"beatatlas.analysis","version":2,"tracks":[{"tempo":{"bpm":120},)"
        R"("beats":[{"frame":1,"seconds":0.5,"beat":1,"bpm":120}],"key":{"number":12}}]})");
    test::writeFile(folder / "jams",
                    R"({"annotations":[{"namespace":"beat","data":[{"time":0.5,"duration":0,)"
                    R"("value":1,"confidence":null}]},{"namespace":"key_mode","data":)"
                    R"({"time":[0],"duration":[9],"value":["F#:minor"]}},{"namespace":)"
                    R"("beat_position","data":[{"time":1,"value":{"position":2}}]}]})");
}

/** The text of --raw, a line feed, and samples. */
void writeSamples(const std::filesystem::path& folder) {
    makeEmpty(folder);
    std::string ramp(6000, '\0');
    for (std::size_t i = 0; i < ramp.size(); ++i) ramp[i] = static_cast<char>(i * i / 97);
    for (const std::string format : {"u8:8000:1", "s16le:44100:2", "s24be:48000:2", "s32le:96000:1",
                                     "f32le:44100:2", "f64be:22050:6", "s16le:44100:0", "x:1:1"})
        test::writeFile(folder / format.substr(0, format.find(':')), format + "\n" + ramp);
}

void writePlaylists(const std::filesystem::path& folder) {
    makeEmpty(folder);
    test::writeFile(folder / "lines", "#EXTM3U\r\n#EXTINF:1,a\r\na%20b.mp3\r\n..\\c\xE9.mp3\r\n"
                                      "file:///m/d.mp3\r\nhttp://e.example/f\r\n");
    test::writeFile(folder / "numbered",
                    "[playlist]\nFile1=a.mp3\nTitle1=A\nfile12=file://localhost/b\n");
    test::writeFile(folder / "wide", std::string("\xFF\xFE"
                                                 "a\0.\0\xD8\n\0",
                                                 9));
}

void writeSettings(const std::filesystem::path& folder) {
    makeEmpty(folder);
    test::writeFile(folder / "usual", "# mine\nkey-notation = camelot\nmemory = \"2G\" # much\n"
                                      "[export]\nto = jams\noverwrite = yes\n");
    test::writeFile(folder / "refused", "[draw]\nwidth = none\n[nothing]\nx\n");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    try {
        const std::filesystem::path folder = argv[1];
        writeNoise(folder / "session", 1);
        writeNoise(folder / "utilities", 2);
        writeNoise(folder / "beatlist", 3);
        writeNoise(folder / "arguments", 4);
        writeNoise(folder / "track", 5);
        writeNoise(folder / "tempo", 6);
        writeBeatSheets(folder / "beatsheet");
        writeNoise(folder / "catalogue", 7);
        writeTracks(folder / "decoder");
        writeSamples(folder / "raw");
        writeSettings(folder / "settings");
        writePlaylists(folder / "playlist");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "writeSeeds: %s\n", error.what());
        return 1;
    }
    return 0;
}
