// SPDX-License-Identifier: MIT
// report_positions [ENCODER…]: writes clicks through every encoder (or those named) into every
// container, decodes them, and prints by how many milliseconds they come out late, in Markdown.
// Encoders with the same answer share a row; of several rates the worst counts.
#include <cmath>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "base/errors.h"
#include "media/TrackDecoder.h"
#include "media/ffmpeg.h"
#include "support/ClickPattern.h"
#include "support/TemporaryFolder.h"
#include "support/encoderFiles.h"

namespace {

// Below this the positions of the clicks are known precisely enough.
constexpr double kGoodMs = 1.0;

/** What became of the clicks of a file: a shift, or why there is none. */
struct Outcome {
    double ms = 0.0;
    std::string trouble;

    std::string text() const {
        if (!trouble.empty()) return trouble;
        return std::abs(ms) < kGoodMs ? "within 1 ms" : fmt::format("{:+.1f} ms", ms);
    }
};

Outcome decoded(const std::string& path) {
    try {
        test::Recorder sound;
        media::TrackDecoder decoder(path);
        decoder.run(sound);
        const auto shift = test::patternShift(sound.left, decoder.format().sessionRate);
        return shift ? Outcome{*shift * 1000.0, ""} : Outcome{0.0, "no clicks"};
    } catch (const base::TrackError&) {
        return {0.0, "refused"};
    }
}

/** The worst of all rates; nothing where the container cannot hold the codec. */
std::optional<Outcome> worstOf(const std::string& encoder, const test::ContainerKind& container,
                               const std::string& path) {
    std::optional<Outcome> worst;
    for (const int rate : test::ratesOf(encoder)) {
        if (!test::writeClickPattern(path, container, encoder, rate)) continue;
        const Outcome found = decoded(path);
        fmt::print(stderr, "{}\t{}\t{}\t{:+.2f}\t{}\n", encoder, container.name, rate, found.ms,
                   found.text());
        if (!worst || !found.trouble.empty() || std::abs(found.ms) > std::abs(worst->ms))
            worst = found;
        if (!found.trouble.empty()) break;
    }
    return worst;
}

/** "within 1 ms: MP4, WAV; +23.2 ms: AVI" */
std::string row(const std::string& encoder, const std::string& path) {
    std::map<std::string, std::string> containers;
    for (const auto& container : test::everyContainer()) {
        const auto found = worstOf(encoder, container, path);
        if (!found) continue;
        std::string& names = containers[found->text()];
        names += (names.empty() ? "" : ", ") + std::string(container.name);
    }
    std::string text;
    for (const auto& [found, names] : containers)
        text += (text.empty() ? "" : "; ") + found + ": " + names;
    return text;
}

}  // namespace

int main(int count, char** arguments) {
    media::showFfmpegMessages(false);
    const test::TemporaryFolder folder;
    std::vector<std::string> encoders(arguments + 1, arguments + count);
    if (encoders.empty()) encoders = test::everyEncoder();
    std::map<std::string, std::string> encodersByRow;
    for (const auto& encoder : encoders) {
        std::string& names = encodersByRow[row(encoder, folder.file("clicks"))];
        names += (names.empty() ? "" : ", ") + encoder;
    }
    fmt::print("| encoder | clicks |\n|---|---|\n");
    for (const auto& [text, names] : encodersByRow)
        fmt::print("| {} | {} |\n", names, text.empty() ? "in no container read here" : text);
    return 0;
}
