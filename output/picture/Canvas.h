// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "output/picture/Color.h"
#include "output/picture/Rect.h"

// As cairo.h declares them.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, modernize-use-using)
typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;
// NOLINTEND(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, modernize-use-using)

namespace output {

enum class Align { left, center, right };

struct TextStyle {
    double size;
    Color color;
    bool isBold = false;
    Align align = Align::left;
};

/** Draws on a cairo surface in the picture's own units. */
class Canvas {
public:
    /** @param scale  surface units for one unit of the picture */
    Canvas(cairo_surface_t* surface, double scale);

    void fillRect(const Rect& rect, const Color& color);

    /** A rectangle whose neighbours touch it: without smoothed edges, which would leave seams
     *  between them. */
    void fillColumn(const Rect& rect, const Color& color);

    void fillRoundedRect(const Rect& rect, double radius, const Color& color);
    void strokeRect(const Rect& rect, double width, const Color& color);
    void fillCircle(double x, double y, double radius, const Color& color);
    /** Moved to the nearest whole unit, so that thin lines are sharp. */
    void verticalLine(double x, double top, double bottom, double width, const Color& color);

    /** @param y  of the base line */
    void text(double x, double y, const std::string& text, const TextStyle& style);
    double textWidth(const std::string& text, const TextStyle& style);

    /** The text, or its beginning and an ellipsis when it is wider than that. */
    std::string fitted(const std::string& text, const TextStyle& style, double width);

private:
    struct ContextDestroy {
        void operator()(cairo_t* context) const;
    };

    void setColor(const Color& color);
    void setFont(const TextStyle& style);

    std::unique_ptr<cairo_t, ContextDestroy> context_;
};

}  // namespace output
