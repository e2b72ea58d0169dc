// SPDX-License-Identifier: MIT
#include "output/picture/Heading.h"

#include <algorithm>
#include <filesystem>

#include <fmt/format.h>

#include "base/displayName.h"
#include "output/textFormat.h"
#include "output/textParts.h"
#include "output/textSummary.h"

namespace output {

namespace {

// No line holds more, and laying out a tag of megabytes takes too long.
constexpr std::size_t kLongestTagBytes = 600;

constexpr double kAnswersGap = 1.4;  // between tempo and key, in multiples of their text size

/** A tag as one line; nothing when it is empty or not text. */
std::string shownTag(const std::string& tag) {
    const std::size_t first = tag.find_first_not_of(" \t\r\n");
    if (first == std::string::npos || !base::isUtf8(tag)) return {};
    std::size_t end = std::min(tag.find_last_not_of(" \t\r\n") + 1, first + kLongestTagBytes);
    while (end < tag.size() && (static_cast<unsigned char>(tag[end]) & 0xC0) == 0x80) --end;
    return base::displayName(tag.substr(first, end - first));
}

/** Without the punctuation that joined it to the preceding text. */
std::string asSentence(const std::string& remark) {
    return remark.substr(std::min(remark.find_first_not_of(",; "), remark.size()));
}

}  // namespace

std::string pictureTitle(const TrackReport& report) {
    const std::string title = shownTag(report.format.tags.title);
    const std::string artist = shownTag(report.format.tags.artist);
    if (title.empty())
        return base::displayName(std::filesystem::path(report.path).filename().string());
    return artist.empty() ? title : artist + " – " + title;
}

void Heading::draw(Canvas& canvas) const {
    drawTitle(canvas);
    drawAnswers(canvas);
    drawRemarks(canvas);
}

void Heading::drawTitle(Canvas& canvas) const {
    const Rect& area = layout_.title;
    const double y = area.y + layout_.titleSize;
    canvas.text(area.x, y, pictureTitle(report_), {layout_.titleSize, theme_.text, true},
                area.width);
    const std::string file = fmt::format("{}   {}   {} Hz{}", clockTime(report_.analysis.seconds()),
                                         report_.format.codec, grouped(report_.format.trackRate),
                                         report_.isCutOff ? "   cut off" : "");
    canvas.text(area.x, area.bottom(), file, muted(), area.width);
}

bool Heading::wantsTempo() const {
    return report_.options.tempo != beatatlas::track::TempoMode::off;
}

void Heading::drawAnswers(Canvas& canvas) const {
    const TextStyle style{layout_.answerSize, theme_.text, true};
    const Rect& area = layout_.answers;
    const double y = area.y + layout_.answerSize;
    double x = area.x;
    if (wantsTempo()) {
        x += canvas.text(x, y, tempoText(report_), style, area.width);
        x += kAnswersGap * layout_.answerSize;
    }
    if (report_.options.wantsKey) canvas.text(x, y, keyText(report_), style, area.right() - x);
}

void Heading::drawRemarks(Canvas& canvas) const {
    const std::string tempo = wantsTempo() ? asSentence(tempoRemarks(report_)) : "";
    const std::string key = report_.options.wantsKey ? asSentence(keyDoubts(report_)) : "";
    std::string text = tempo.empty() ? "" : "tempo " + tempo;
    if (!key.empty()) text += (text.empty() ? "key " : "  ·  key ") + key;
    const Rect& area = layout_.remarks;
    canvas.paragraph(area.x, area.y + layout_.bodySize, text, muted(), area.width,
                     layout_.remarkLines);
}

}  // namespace output
