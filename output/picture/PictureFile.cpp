// SPDX-License-Identifier: MIT
#include "output/picture/PictureFile.h"

#include <cmath>
#include <exception>
#include <memory>

#include <cairo-svg.h>
#include <cairo.h>

#include "base/errors.h"
#include "output/picture/Canvas.h"
#include "output/picture/TrackPicture.h"

namespace output {

namespace {

struct SurfaceDestroy {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using SurfacePointer = std::unique_ptr<cairo_surface_t, SurfaceDestroy>;

/** Cairo calls back from C code, which no exception may cross: an exception is kept until cairo has
 *  returned. */
struct Output {
    const ByteSink& write;
    std::exception_ptr failure;
};

cairo_status_t writeBytes(void* closure, const unsigned char* bytes, unsigned count) {
    auto& output = *static_cast<Output*>(closure);
    if (output.failure) return CAIRO_STATUS_WRITE_ERROR;
    try {
        output.write(bytes, count);
        return CAIRO_STATUS_SUCCESS;
    } catch (...) {
        output.failure = std::current_exception();
        return CAIRO_STATUS_WRITE_ERROR;
    }
}

void requireSuccess(cairo_status_t status, const Output& output) {
    if (output.failure) std::rethrow_exception(output.failure);
    if (status != CAIRO_STATUS_SUCCESS) {
        throw base::OutputError(std::string("the picture cannot be drawn: ") +
                                cairo_status_to_string(status));
    }
}

void writePng(const TrackPicture& picture, int width, Output& output) {
    const PictureLayout& layout = picture.layout();
    const int height = static_cast<int>(std::lround(layout.height * layout.scale));
    const SurfacePointer surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
    requireSuccess(cairo_surface_status(surface.get()), output);
    Canvas canvas(surface.get(), layout.scale);
    picture.draw(canvas);
    requireSuccess(cairo_surface_write_to_png_stream(surface.get(), writeBytes, &output), output);
}

void writeSvg(const TrackPicture& picture, int width, Output& output) {
    const PictureLayout& layout = picture.layout();
    const SurfacePointer surface(cairo_svg_surface_create_for_stream(writeBytes, &output, width,
                                                                     layout.height * layout.scale));
    cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
    {
        Canvas canvas(surface.get(), layout.scale);
        picture.draw(canvas);
    }
    cairo_surface_finish(surface.get());
    requireSuccess(cairo_surface_status(surface.get()), output);
}

}  // namespace

void writePicture(const TrackReport& report, const PictureOptions& options, PictureFormat format,
                  const ByteSink& write) {
    Output output{write, nullptr};
    const TrackPicture picture(report, options);
    if (format == PictureFormat::png)
        writePng(picture, options.widthPixels, output);
    else
        writeSvg(picture, options.widthPixels, output);
}

}  // namespace output
