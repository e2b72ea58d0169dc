// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>

#include <cairo.h>

#include "output/picture/Color.h"
#include "output/picture/PictureFile.h"
#include "output/picture/Rect.h"
#include "support/TemporaryFolder.h"

namespace test {

/** 0xRRGGBB */
inline std::uint32_t hexOf(const output::Color& color) {
    const auto byte = [](double value) {
        return static_cast<std::uint32_t>(std::lround(value * 255.0));
    };
    return (byte(color.red) << 16) | (byte(color.green) << 8) | byte(color.blue);
}

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

    int count(std::uint32_t color, const output::Rect& area) const {
        return countWhere(area, [&](std::uint32_t pixel) { return pixel == color; });
    }

    int countOthers(std::uint32_t color, const output::Rect& area) const {
        return countWhere(area, [&](std::uint32_t pixel) { return pixel != color; });
    }

private:
    template <class Condition>
    int countWhere(const output::Rect& area, const Condition& isCounted) const {
        int count = 0;
        for (int y = static_cast<int>(area.y); y < static_cast<int>(area.bottom()); ++y) {
            for (int x = static_cast<int>(area.x); x < static_cast<int>(area.right()); ++x)
                count += isCounted(at(x, y));
        }
        return count;
    }

    struct SurfaceDestroy {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    };

    std::unique_ptr<cairo_surface_t, SurfaceDestroy> surface_;
};

inline std::string pictureBytes(const output::TrackReport& report,
                                const output::PictureOptions& options,
                                output::PictureFormat format) {
    std::string picture;
    output::writePicture(report, options, format, [&](const void* bytes, std::size_t count) {
        picture.append(static_cast<const char*>(bytes), count);
    });
    return picture;
}

inline Pixels drawPixels(const output::TrackReport& report,
                         const output::PictureOptions& options = {}) {
    const TemporaryFolder folder;
    writeFile(folder.file("out.png"), pictureBytes(report, options, output::PictureFormat::png));
    return Pixels(folder.file("out.png"));
}

}  // namespace test
