// SPDX-License-Identifier: MIT
#include "picture/PictureFile.h"

#include <cmath>
#include <exception>
#include <memory>

#include <cairo-svg.h>
#include <cairo.h>

#include "io/OutputFile.h"
#include "io/errors.h"
#include "io/fileEnding.h"
#include "picture/Canvas.h"
#include "picture/TrackPicture.h"

namespace app {

namespace {

struct SurfaceDestroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using SurfacePointer = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;

/** Cairo calls back from C code, which no exception may cross: it is kept until cairo has returned. */
struct Output {
    OutputFile& file;
    std::exception_ptr failure;
};

cairo_status_t writeBytes(void* closure, const unsigned char* bytes, unsigned count) {
    auto& output = *static_cast<Output*>(closure);
    if (output.failure) return CAIRO_STATUS_WRITE_ERROR;
    try {
        output.file.write(bytes, count);
        return CAIRO_STATUS_SUCCESS;
    } catch (...) {
        output.failure = std::current_exception();
        return CAIRO_STATUS_WRITE_ERROR;
    }
}

void requireSuccess(cairo_status_t status, const Output& output) {
    if (output.failure) std::rethrow_exception(output.failure);
    if (status != CAIRO_STATUS_SUCCESS) {
        throw OutputError(std::string("the picture cannot be drawn: ") +
                          cairo_status_to_string(status));
    }
}

void drawOn(cairo_surface_t* surface, double scale, const TrackReport& report,
            const PictureOptions& options) {
    Canvas canvas(surface, scale);
    TrackPicture(report, options).draw(canvas);
}

void writePng(const TrackReport& report, const PictureOptions& options, double scale,
              Output& output) {
    const int height = static_cast<int>(std::lround(TrackPicture::kHeight * scale));
    const SurfacePointer surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, options.widthPixels, height));
    drawOn(surface.get(), scale, report, options);
    requireSuccess(cairo_surface_write_to_png_stream(surface.get(), writeBytes, &output), output);
}

void writeSvg(const TrackReport& report, const PictureOptions& options, double scale,
              Output& output) {
    const double height = TrackPicture::kHeight * scale;
    const SurfacePointer surface(
        cairo_svg_surface_create_for_stream(writeBytes, &output, options.widthPixels, height));
    cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
    drawOn(surface.get(), scale, report, options);
    cairo_surface_finish(surface.get());
    requireSuccess(cairo_surface_status(surface.get()), output);
}

}  // namespace

PictureFormat pictureFormatOf(const std::string& path) {
    if (hasEnding(path, ".png")) return PictureFormat::png;
    if (hasEnding(path, ".svg")) return PictureFormat::svg;
    throw UsageError("the picture's name must end in .png or .svg (--output)");
}

void writePicture(const TrackReport& report, const PictureOptions& options, PictureFormat format,
                  const std::string& path) {
    OutputFile file(path);
    Output output{file, nullptr};
    const double scale = options.widthPixels / TrackPicture::kWidth;
    if (format == PictureFormat::png)
        writePng(report, options, scale, output);
    else
        writeSvg(report, options, scale, output);
    file.commit();
}

}  // namespace app
