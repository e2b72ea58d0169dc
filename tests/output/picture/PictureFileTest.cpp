// SPDX-License-Identifier: MIT
#include "output/picture/PictureFile.h"

#include <cmath>
#include <memory>

#include <cairo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "output/picture/Rect.h"
#include "output/picture/palette.h"
#include "support/Reports.h"
#include "support/TemporaryFolder.h"

namespace output {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct SurfaceDestroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

/** A picture read back. */
class Pixels {
public:
    explicit Pixels(const std::string& path)
        : surface_(cairo_image_surface_create_from_png(path.c_str())) {}

    int width() const { return cairo_image_surface_get_width(surface_.get()); }
    int height() const { return cairo_image_surface_get_height(surface_.get()); }

    /** 0xRRGGBB */
    std::uint32_t at(int x, int y) const {
        const unsigned char* row =
            cairo_image_surface_get_data(surface_.get()) +
            static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface_.get());
        return reinterpret_cast<const std::uint32_t*>(row)[x] & 0xFFFFFFU;
    }

    int count(std::uint32_t color, const Rect& area) const {
        int count = 0;
        for (int y = static_cast<int>(area.y); y < static_cast<int>(area.bottom()); ++y) {
            for (int x = static_cast<int>(area.x); x < static_cast<int>(area.right()); ++x)
                count += at(x, y) == color;
        }
        return count;
    }

private:
    std::unique_ptr<cairo_surface_t, SurfaceDestroy> surface_;
};

std::uint32_t hexOf(const Color& color) {
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(std::lround(value * 255.0));
    };
    return (byte(color.red) << 16) | (byte(color.green) << 8) | byte(color.blue);
}

// Where the parts of the picture stand at its usual size.
constexpr Rect kOverviewArea{40, 128, 1520, 280};
constexpr Rect kDotsArea{40, 476, 1520, 44};
constexpr Rect kZoomArea{40, 566, 1520, 246};

class PictureFile : public testing::Test {
protected:
    Pixels draw(const TrackReport& report, const PictureOptions& options = {}) {
        test::writeFile(path_, bytesOf(report, options, PictureFormat::png));
        return Pixels(path_);
    }

    static std::string bytesOf(const TrackReport& report, const PictureOptions& options,
                               PictureFormat format) {
        std::string picture;
        writePicture(report, options, format, [&](const void* bytes, std::size_t count) {
            picture.append(static_cast<const char*>(bytes), count);
        });
        return picture;
    }

    test::TemporaryFolder folder_;
    std::string path_ = folder_.file("out.png");
};

TEST_F(PictureFile, HasTheWidthAskedFor) {
    const Pixels usual = draw(test::exampleReport());
    EXPECT_EQ(usual.width(), 1600);
    EXPECT_EQ(usual.height(), 860);
    PictureOptions options;
    options.widthPixels = 800;
    const Pixels half = draw(test::exampleReport(), options);
    EXPECT_EQ(half.width(), 800);
    EXPECT_EQ(half.height(), 430);
}

TEST_F(PictureFile, ShowsTheLoudnessWaveInItsSixColours) {
    const Pixels picture = draw(test::exampleReport());
    for (const auto& loud : palette::kLoud) {
        EXPECT_GT(picture.count(hexOf(loud.color), kOverviewArea), 1000) << loud.meaning;
    }
}

TEST_F(PictureFile, DrawsLouderPointsHigher) {
    const Pixels picture = draw(test::exampleReport());
    const Rect left{kOverviewArea.x, kOverviewArea.y, kOverviewArea.width / 2,
                    kOverviewArea.height};
    const Rect right{kOverviewArea.x + kOverviewArea.width / 2, left.y, left.width, left.height};
    int quiet = 0;
    int loud = 0;
    for (const auto& color : palette::kLoud) {
        quiet += picture.count(hexOf(color.color), left);
        loud += picture.count(hexOf(color.color), right);
    }
    EXPECT_NEAR(static_cast<double>(loud) / quiet, 1.516,
                0.08);  // (16000 / 8000) to the power of 0.6
}

TEST_F(PictureFile, ShowsDotsWhereThereIsBass) {
    const Pixels picture = draw(test::exampleReport());
    const Rect left{kDotsArea.x, kDotsArea.y, kDotsArea.width / 2 - 10, kDotsArea.height};
    const Rect right{kDotsArea.x + kDotsArea.width / 2 + 10, left.y, left.width, left.height};
    const auto isDot = [](std::uint32_t pixel) { return (pixel >> 16) > 0xE0; };
    const auto dots = [&](const Rect& area) {
        int count = 0;
        for (int x = static_cast<int>(area.x); x < static_cast<int>(area.right()); ++x) {
            count += isDot(picture.at(x, static_cast<int>(area.centerY())));
        }
        return count;
    };
    EXPECT_EQ(dots(left), 0);
    EXPECT_GT(dots(right), 400);
}

TEST_F(PictureFile, DrawsTheBeatGridWithBrighterDownbeats) {
    const Pixels picture = draw(test::exampleReport());
    // The stretch is the whole of 8 s: 190 units a second. Row 586 lies above the wave, where only
    // downbeats reach.
    const auto isWhite = [](std::uint32_t pixel) {
        return (pixel & 0xFF) > 0xC0 && (pixel >> 16) > 0xC0;
    };
    for (const double downbeat : {0.6, 2.6, 4.6, 6.6}) {
        EXPECT_TRUE(isWhite(picture.at(static_cast<int>(40 + downbeat * 190), 568))) << downbeat;
    }
    EXPECT_FALSE(isWhite(picture.at(static_cast<int>(40 + 1.1 * 190), 568)));
    EXPECT_TRUE(isWhite(picture.at(static_cast<int>(40 + 1.1 * 190), 808)));
}

TEST_F(PictureFile, DrawsNoGridBeforeThereIsOne) {
    TrackReport report = test::exampleReport();
    report.analysis.beats.clear();
    const Pixels picture = draw(report);
    EXPECT_EQ(picture.count(hexOf(palette::kDownbeat), kZoomArea), 0);
}

TEST_F(PictureFile, DrawsATrackInWhichNothingWasFound) {
    EXPECT_EQ(draw(test::emptyReport()).width(), 1600);
}

TEST_F(PictureFile, DrawsATrackOfOneFrame) {
    TrackReport report = test::emptyReport();
    report.analysis.frames = 1;
    report.analysis.zoomWave = {{31.0F, 7}};
    EXPECT_EQ(draw(report).width(), 1600);
}

TEST_F(PictureFile, ClampsLevelsAndColoursFromOutside) {
    TrackReport report = test::exampleReport();
    report.analysis.loudWave[0] = {1e30F, 77};
    report.analysis.zoomWave[0] = {1.0F, -5};
    report.analysis.beats[0].frame = -1000;
    EXPECT_EQ(draw(report).width(), 1600);
}

TEST_F(PictureFile, TakesAnyNameAsTitle) {
    TrackReport report = test::exampleReport();
    for (const std::string& name :
         {std::string(300, 'W'), std::string("\xFF\xFE"), std::string("a\nb"), std::string()}) {
        report.path = name;
        EXPECT_EQ(draw(report).width(), 1600);
    }
}

TEST_F(PictureFile, WritesScalableGraphics) {
    const std::string text = bytesOf(test::exampleReport(), {}, PictureFormat::svg);
    EXPECT_THAT(text, StartsWith("<?xml"));
    EXPECT_THAT(text, HasSubstr("width=\"1600px\" height=\"860px\""));
    EXPECT_THAT(text.substr(text.size() - 8), HasSubstr("</svg>"));
}

TEST_F(PictureFile, GivesTheSamePictureAgain) {
    draw(test::exampleReport());
    const std::string first = test::readFile(path_);
    draw(test::exampleReport());
    EXPECT_EQ(test::readFile(path_), first);
}

TEST_F(PictureFile, LetsThroughWhatTheSinkThrows) {
    const ByteSink full = [](const void*, std::size_t) { throw base::OutputError("full"); };
    for (const PictureFormat format : {PictureFormat::png, PictureFormat::svg})
        EXPECT_THROW(writePicture(test::exampleReport(), {}, format, full), base::OutputError);
}

}  // namespace
}  // namespace output
