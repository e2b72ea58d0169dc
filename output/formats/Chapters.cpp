// SPDX-License-Identifier: MIT
#include "output/formats/Chapters.h"

#include <cmath>

#include <fmt/format.h>

#include "output/formats/sections.h"
#include "output/formats/trackNames.h"

namespace output {

namespace {

std::string metadataText(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        if (std::string_view("=;#\\\n").find(letter) != std::string_view::npos) escaped += '\\';
        escaped += letter;
    }
    return escaped;
}

std::string metadataLine(const char* name, const std::string& value) {
    return value.empty() ? "" : fmt::format("{}={}\n", name, metadataText(value));
}

std::string xmlText(const std::string& text) {
    std::string escaped;
    for (const char letter : text) {
        if (letter == '&')
            escaped += "&amp;";
        else if (letter == '<')
            escaped += "&lt;";
        else if (letter == '>')
            escaped += "&gt;";
        else
            escaped += letter;
    }
    return escaped;
}

/** "01:02:03.500000000". */
std::string matroskaTime(double seconds) {
    const std::int64_t nanoseconds = std::llround(seconds * 1e9);
    const std::int64_t whole = nanoseconds / 1'000'000'000;
    return fmt::format("{:02}:{:02}:{:02}.{:09}", whole / 3600, whole / 60 % 60, whole % 60,
                       nanoseconds % 1'000'000'000);
}

}  // namespace

void FfmpegMetadata::add(const TrackReport& report, const Peaks*) {
    std::string text = ";FFMETADATA1\n";
    text += metadataLine("title", titleOf(report)) + metadataLine("artist", artistOf(report));
    if (!report.corrections.empty())
        text += metadataLine("comment", "Corrected by hand: " + correctionsText(report));
    const int rate = report.analysis.rate;
    for (const Section& section : sectionsOf(report)) {
        text += fmt::format("[CHAPTER]\nTIMEBASE=1/{}\nSTART={}\nEND={}\n", rate,
                            std::llround(section.fromSeconds * rate),
                            std::llround(section.toSeconds * rate));
        text += metadataLine("title", sectionTitle(section, report.keyNotation));
    }
    write_(text);
}

void MatroskaChapters::add(const TrackReport& report, const Peaks*) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<!DOCTYPE Chapters SYSTEM \"matroskachapters.dtd\">\n"
                       "<Chapters>\n  <EditionEntry>\n";
    int number = 0;
    for (const Section& section : sectionsOf(report)) {
        text += fmt::format("    <ChapterAtom>\n"
                            "      <ChapterUID>{}</ChapterUID>\n"
                            "      <ChapterTimeStart>{}</ChapterTimeStart>\n"
                            "      <ChapterTimeEnd>{}</ChapterTimeEnd>\n"
                            "      <ChapterDisplay>\n"
                            "        <ChapterString>{}</ChapterString>\n"
                            "        <ChapterLanguage>und</ChapterLanguage>\n"
                            "      </ChapterDisplay>\n"
                            "    </ChapterAtom>\n",
                            ++number, matroskaTime(section.fromSeconds),
                            matroskaTime(section.toSeconds),
                            xmlText(sectionTitle(section, report.keyNotation)));
    }
    write_(text + "  </EditionEntry>\n</Chapters>\n");
}

}  // namespace output
