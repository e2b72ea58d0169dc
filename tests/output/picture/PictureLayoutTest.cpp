// SPDX-License-Identifier: MIT
#include "output/picture/PictureLayout.h"

#include <vector>

#include <gtest/gtest.h>

#include "output/picture/PictureOptions.h"

namespace output {
namespace {

std::vector<Rect> partsOf(const PictureLayout& layout) {
    return {layout.title,  layout.answers, layout.remarks, layout.overview,
            layout.legend, layout.dots,    layout.zoom};
}

bool overlap(const Rect& a, const Rect& b) {
    return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

TEST(PictureLayout, KeepsItsPartsInsideAndApartAtEveryWidth) {
    for (int width = kNarrowestPicture; width <= kWidestPicture; ++width) {
        const PictureLayout layout(width);
        const std::vector<Rect> parts = partsOf(layout);
        for (std::size_t i = 0; i < parts.size(); ++i) {
            ASSERT_GE(parts[i].x, 14.0) << width;
            ASSERT_GE(parts[i].y, 10.0) << width;
            ASSERT_LE(parts[i].right(), layout.width - 14.0 + 1e-9) << width;
            ASSERT_LE(parts[i].bottom(), layout.height) << width;
            for (std::size_t j = 0; j < i; ++j)
                ASSERT_FALSE(overlap(parts[i], parts[j])) << width << ": " << i << ", " << j;
        }
    }
}

// Twelve pixels are what the letters of a page's footnotes have.
TEST(PictureLayout, HasNoWordsTooSmallToRead) {
    for (int width = kNarrowestPicture; width <= kWidestPicture; ++width) {
        const PictureLayout layout(width);
        for (const double size :
             {layout.titleSize, layout.answerSize, layout.bodySize, layout.smallSize})
            ASSERT_GE(size * layout.scale, 12.0) << width;
    }
}

TEST(PictureLayout, EnlargesWidePicturesAsAWhole) {
    const PictureLayout usual(1600);
    const PictureLayout wide(3840);
    EXPECT_DOUBLE_EQ(usual.scale, 1.0);
    EXPECT_DOUBLE_EQ(wide.scale, 2.4);
    EXPECT_DOUBLE_EQ(wide.height, usual.height);
}

}  // namespace
}  // namespace output
