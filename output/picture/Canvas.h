// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "output/picture/Color.h"
#include "output/picture/Rect.h"

// As cairo.h and pango-types.h declare them.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, modernize-use-using)
typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;
typedef struct _PangoLayout PangoLayout;
// NOLINTEND(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, modernize-use-using)

namespace output {

enum class Align { left, center, right };

struct TextStyle {
    /** From line to line, in text sizes. */
    static constexpr double kLineHeight = 1.35;

    double size;
    Color color;
    bool isBold = false;
    Align align = Align::left;
};

/** A line with an edge on both sides, which sets it off from the background. */
struct LineStyle {
    double width;
    Color color;
    /** On each side. */
    double haloWidth = 0.0;
    Color halo{};
};

/** Draws on a cairo surface in the picture's own units.
 *
 *  Pango lays out the text: each script in its own direction, in a font that has it. Without any
 *  font, text is drawn with cairo's built-in Latin letters. */
class Canvas {
public:
    /** @param scale  surface units for one unit of the picture */
    Canvas(cairo_surface_t* surface, double scale);

    /** The width of a pixel in the picture's units. */
    double pixel() const { return 1.0 / scale_; }

    void fillRect(const Rect& rect, const Color& color);

    /** A rectangle that adjoins others: drawn without anti-aliasing, which would leave seams
     *  between them. */
    void fillColumn(const Rect& rect, const Color& color);

    void fillRoundedRect(const Rect& rect, double radius, const Color& color);
    void strokeRect(const Rect& rect, double width, const Color& color);
    void fillCircle(double x, double y, double radius, const Color& color);

    /** A line of whole pixels: thin lines stay sharp and none vanishes. */
    void verticalLine(double x, double top, double bottom, const LineStyle& style);

    /** One line of UTF-8; a wider text ends in an ellipsis.
     *  @param y  of the base line
     *  @return the width it takes */
    double text(double x, double y, const std::string& text, const TextStyle& style, double width);

    /** UTF-8 broken into lines of that width. If they do not fit in that many lines, the last one
     *  ends in an ellipsis. Without any font: one line. @param y  of the first base line */
    void paragraph(double x, double y, const std::string& text, const TextStyle& style,
                   double width, int lines);

    double textWidth(const std::string& text, const TextStyle& style);

private:
    struct Release {
        void operator()(cairo_t* context) const;
        void operator()(PangoLayout* layout) const;
    };

    void setColor(const Color& color);
    void setText(const std::string& text, const TextStyle& style);
    void setWidth(double width, int lines);
    bool canShow(const std::string& text);
    double showLine(int index, double x, double y, Align align);
    double showPlainly(double x, double y, const std::string& text, const TextStyle& style,
                       double width);

    double scale_;
    std::unique_ptr<cairo_t, Release> context_;
    std::unique_ptr<PangoLayout, Release> layout_;
    bool hasFonts_ = true;
};

}  // namespace output
