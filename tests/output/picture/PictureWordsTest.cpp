// SPDX-License-Identifier: MIT
// The words of a picture, as one sees them.
#include <pango/pangocairo.h>

#include <cstdint>

#include <gtest/gtest.h>

#include "output/picture/PictureLayout.h"
#include "output/picture/Theme.h"
#include "support/Pixels.h"
#include "support/Reports.h"

namespace output {
namespace {

using test::drawPixels;
using test::hexOf;
using test::Pixels;

const Theme& kDark = theme(ThemeName::dark);
const PictureLayout kLayout(1600);
constexpr Rect kBlank{0.0, 0.0, 800.0, 60.0};

TrackReport titled(const std::string& title) {
    TrackReport report = test::exampleReport();
    report.format.tags.title = title;
    return report;
}

/** A report with everything there may be to say of tempo and key. */
TrackReport doubtfulReport() {
    TrackReport report = titled(std::string(300, 'W'));
    beatatlas::track::TempoJudgement judgement;
    judgement.isSteady = false;
    judgement.rawBpm = 60.0;
    judgement.confidence = {};
    judgement.stretches = {{0.0, 4.0, 100.0}, {4.0, 8.0, 125.5}};
    judgement.readings = {{beatatlas::track::ReadingKind::twice, 240.0, 0.4, 0.0}};
    report.analysis.judgement = judgement;
    report.analysis.key->confidence = 0.1;
    report.analysis.key->segments = {{0.0, 4.5, 21, 0.9}, {4.5, 8.0, 13, 0.9}};
    report.isCutOff = true;
    return report;
}

/** A title set by Pango itself. */
class ReferenceTitle {
public:
    explicit ReferenceTitle(const std::string& text)
        : surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 800, 60)),
          context_(cairo_create(surface_)), layout_(pango_cairo_create_layout(context_)) {
        PangoFontDescription* font = pango_font_description_from_string("sans-serif bold");
        pango_font_description_set_absolute_size(font, kLayout.titleSize * PANGO_SCALE);
        pango_layout_set_font_description(layout_, font);
        pango_font_description_free(font);
        pango_layout_set_text(layout_, text.data(), static_cast<int>(text.size()));
    }
    ~ReferenceTitle() {
        g_object_unref(layout_);
        cairo_destroy(context_);
        cairo_surface_destroy(surface_);
    }
    ReferenceTitle(const ReferenceTitle&) = delete;
    ReferenceTitle& operator=(const ReferenceTitle&) = delete;

    bool hasLetters() const { return pango_layout_get_unknown_glyphs_count(layout_) == 0; }

    /** How many pixels its letters touch. */
    int ink() {
        cairo_set_source_rgb(context_, 1.0, 1.0, 1.0);
        cairo_move_to(context_, 4.0, 4.0);
        pango_cairo_show_layout(context_, layout_);
        const test::TemporaryFolder folder;
        cairo_surface_write_to_png(surface_, folder.file("title.png").c_str());
        return Pixels(folder.file("title.png")).countOthers(0, kBlank);
    }

private:
    cairo_surface_t* surface_;
    cairo_t* context_;
    PangoLayout* layout_;
};

struct Script {
    const char* name;
    const char* title;
};

class PictureScript : public testing::TestWithParam<Script> {};

// Boxes would take other pixels than the letters do.
TEST_P(PictureScript, IsWrittenInItsOwnLetters) {
    ReferenceTitle reference(GetParam().title);
    if (!reference.hasLetters())
        GTEST_SKIP() << "no font that is installed here has letters for " << GetParam().name;
    const Pixels picture = drawPixels(titled(GetParam().title));
    const Rect area{kLayout.title.x, kLayout.title.y, kLayout.title.width,
                    kLayout.titleSize * 1.28};
    const int expected = reference.ink();
    EXPECT_NEAR(picture.countOthers(hexOf(kDark.background), area), expected, expected * 0.12);
}

INSTANTIATE_TEST_SUITE_P(Each, PictureScript,
                         testing::Values(Script{"Latin", "Night Song"},
                                         Script{"Japanese", "夜の音楽"},
                                         Script{"Arabic", "أغنية الليل"},
                                         Script{"Cyrillic", "Ночная песня"},
                                         Script{"Chinese", "夜晚的歌"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(PictureWords, BeginAtTheLeftInEveryScript) {
    for (const char* title : {"Night Song", "أغنية الليل"}) {
        if (!ReferenceTitle(title).hasLetters())
            GTEST_SKIP() << "no font that is installed here has the letters of " << title;
        const Pixels picture = drawPixels(titled(title));
        const Rect& area = kLayout.title;
        const Rect begin{area.x, area.y, 30.0, kLayout.titleSize};
        const Rect end{area.right() - 30.0, area.y, 30.0, kLayout.titleSize};
        EXPECT_GT(picture.countOthers(hexOf(kDark.background), begin), 30) << title;
        EXPECT_EQ(picture.countOthers(hexOf(kDark.background), end), 0) << title;
    }
}

TEST(PictureWords, StayInsideThePictureHoweverMuchThereIsToSay) {
    for (const int width : {480, 720, 1099, 1100, 1600}) {
        for (const ThemeName name : {ThemeName::dark, ThemeName::light}) {
            PictureOptions options;
            options.widthPixels = width;
            options.theme = name;
            const Pixels picture = drawPixels(doubtfulReport(), options);
            const auto height = static_cast<double>(picture.height());
            const std::uint32_t ground = hexOf(theme(name).background);
            // One pixel of the margin is for smoothed edges.
            const double margin = PictureLayout(width).title.x - 1.0;
            EXPECT_EQ(picture.countOthers(ground, {0.0, 0.0, margin, height}), 0) << width;
            EXPECT_EQ(picture.countOthers(ground, {width - margin, 0.0, margin, height}), 0)
                << width;
            EXPECT_EQ(picture.countOthers(ground, {0.0, height - 4.0, 1.0 * width, 4.0}), 0)
                << width;
        }
    }
}

TEST(PictureWords, TellHowSureTempoAndKeyAre) {
    const auto remarkInk = [](const TrackReport& report) {
        return drawPixels(report).countOthers(hexOf(kDark.background), kLayout.remarks);
    };
    TrackReport keyDoubted = test::exampleReport();
    keyDoubted.analysis.key->confidence = 0.5;
    TrackReport tempoDoubted = doubtfulReport();
    tempoDoubted.analysis.key->confidence = 0.9;
    EXPECT_EQ(remarkInk(test::exampleReport()), 0);
    EXPECT_GT(remarkInk(keyDoubted), 500);
    EXPECT_GT(remarkInk(tempoDoubted), 1000);
    EXPECT_GT(remarkInk(doubtfulReport()), remarkInk(tempoDoubted) + 500);
}

TEST(PictureWords, NameEachKeyWhereTheKeyChanges) {
    const Pixels steady = drawPixels(test::exampleReport());
    EXPECT_EQ(steady.count(hexOf(kDark.lane), kLayout.overview), 0);
    const Pixels changing = drawPixels(doubtfulReport());
    const Rect& area = kLayout.overview;
    const double change = area.x + area.width * 4.5 / 8.0;
    for (const double from : {area.x, change}) {
        const Rect name{from + 6.0, area.y + 3.0, 60.0, 14.0};
        EXPECT_GT(changing.count(hexOf(kDark.lane), name), 200);
        EXPECT_GT(changing.countOthers(hexOf(kDark.lane), name), 100);
    }
}

}  // namespace
}  // namespace output
