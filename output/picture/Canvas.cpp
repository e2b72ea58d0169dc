// SPDX-License-Identifier: MIT
#include "output/picture/Canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <pango/pangocairo.h>

#include "output/picture/plainLetters.h"

namespace output {

namespace {

constexpr double kUsualSize = 12.0;

int toPango(double units) {
    return static_cast<int>(std::lround(units * PANGO_SCALE));
}

/** The fraction of a text's width that lies left of its position. */
double shareLeftOf(Align align) {
    return align == Align::left ? 0.0 : align == Align::center ? 0.5 : 1.0;
}

/** Letters keep their widths at every scale, so that lines always break at the same words, and have
 *  no coloured edges. */
PangoLayout* makeLayout(cairo_t* context) {
    PangoLayout* layout = pango_cairo_create_layout(context);
    PangoContext* pango = pango_layout_get_context(layout);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(pango, options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(pango, FALSE);
    pango_layout_context_changed(layout);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    return layout;
}

}  // namespace

Canvas::Canvas(cairo_surface_t* surface, double scale)
    : scale_(scale), context_(cairo_create(surface)) {
    cairo_scale(context_.get(), scale, scale);
    layout_.reset(makeLayout(context_.get()));
    hasFonts_ = canShow("A");
}

void Canvas::Release::operator()(cairo_t* context) const {
    cairo_destroy(context);
}

void Canvas::Release::operator()(PangoLayout* layout) const {
    g_object_unref(layout);
}

void Canvas::setColor(const Color& color) {
    cairo_set_source_rgba(context_.get(), color.red, color.green, color.blue, color.alpha);
}

void Canvas::fillRect(const Rect& rect, const Color& color) {
    setColor(color);
    cairo_rectangle(context_.get(), rect.x, rect.y, rect.width, rect.height);
    cairo_fill(context_.get());
}

void Canvas::fillColumn(const Rect& rect, const Color& color) {
    cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_NONE);
    fillRect(rect, color);
    cairo_set_antialias(context_.get(), CAIRO_ANTIALIAS_DEFAULT);
}

void Canvas::fillRoundedRect(const Rect& rect, double radius, const Color& color) {
    constexpr double kQuarter = std::numbers::pi / 2.0;
    cairo_t* c = context_.get();
    const double r = std::min({radius, rect.width / 2.0, rect.height / 2.0});
    setColor(color);
    cairo_new_path(c);
    cairo_arc(c, rect.right() - r, rect.y + r, r, -kQuarter, 0.0);
    cairo_arc(c, rect.right() - r, rect.bottom() - r, r, 0.0, kQuarter);
    cairo_arc(c, rect.x + r, rect.bottom() - r, r, kQuarter, 2.0 * kQuarter);
    cairo_arc(c, rect.x + r, rect.y + r, r, 2.0 * kQuarter, 3.0 * kQuarter);
    cairo_close_path(c);
    cairo_fill(c);
}

void Canvas::strokeRect(const Rect& rect, double width, const Color& color) {
    setColor(color);
    cairo_set_line_width(context_.get(), width);
    cairo_rectangle(context_.get(), rect.x, rect.y, rect.width, rect.height);
    cairo_stroke(context_.get());
}

void Canvas::fillCircle(double x, double y, double radius, const Color& color) {
    setColor(color);
    cairo_new_path(context_.get());
    cairo_arc(context_.get(), x, y, radius, 0.0, 2.0 * std::numbers::pi);
    cairo_fill(context_.get());
}

void Canvas::verticalLine(double x, double top, double bottom, const LineStyle& style) {
    const double width = std::max(1.0, std::round(style.width * scale_));
    const double left = std::round(x * scale_ - width / 2.0);
    const double halo =
        style.haloWidth > 0.0 ? std::max(1.0, std::round(style.haloWidth * scale_)) : 0.0;
    if (halo > 0.0) {
        fillRect({(left - halo) / scale_, top, (width + 2.0 * halo) / scale_, bottom - top},
                 style.halo);
    }
    fillRect({left / scale_, top, width / scale_, bottom - top}, style.color);
}

void Canvas::setText(const std::string& text, const TextStyle& style) {
    PangoFontDescription* font = pango_font_description_new();
    pango_font_description_set_family_static(font, "sans-serif");
    pango_font_description_set_weight(font, style.isBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_absolute_size(font, style.size * PANGO_SCALE);
    pango_layout_set_font_description(layout_.get(), font);
    pango_font_description_free(font);
    pango_layout_set_text(layout_.get(), text.data(), static_cast<int>(text.size()));
}

void Canvas::setWidth(double width, int lines) {
    pango_layout_set_width(layout_.get(), std::max(0, toPango(width)));
    // Pango takes a number of lines as a negative height.
    pango_layout_set_height(layout_.get(), -lines);
}

/** Whether there is a font for each of the letters. */
bool Canvas::canShow(const std::string& text) {
    setText(text, {kUsualSize, {}});
    return pango_layout_get_unknown_glyphs_count(layout_.get()) == 0;
}

double Canvas::showLine(int index, double x, double y, Align align) {
    PangoLayoutLine* line = pango_layout_get_line_readonly(layout_.get(), index);
    PangoRectangle extents = {};
    pango_layout_line_get_extents(line, nullptr, &extents);
    const double width = static_cast<double>(extents.width) / PANGO_SCALE;
    cairo_move_to(context_.get(), x - shareLeftOf(align) * width, y);
    pango_cairo_show_layout_line(context_.get(), line);
    return width;
}

double Canvas::text(double x, double y, const std::string& text, const TextStyle& style,
                    double width) {
    setColor(style.color);
    if (!hasFonts_) return showPlainly(x, y, text, style, width);
    setText(text, style);
    setWidth(width, 1);
    return showLine(0, x, y, style.align);
}

void Canvas::paragraph(double x, double y, const std::string& text, const TextStyle& style,
                       double width, int lines) {
    if (!hasFonts_) {
        this->text(x, y, text, style, width);
        return;
    }
    setColor(style.color);
    setText(text, style);
    setWidth(width, lines);
    const int count = std::min(lines, pango_layout_get_line_count(layout_.get()));
    for (int i = 0; i < count; ++i)
        showLine(i, x, y + i * TextStyle::kLineHeight * style.size, style.align);
}

double Canvas::showPlainly(double x, double y, const std::string& text, const TextStyle& style,
                           double width) {
    const std::string shown = fittedPlainly(context_.get(), text, style.size, width);
    const double taken = plainWidth(context_.get(), shown, style.size);
    showPlainLetters(context_.get(), x - shareLeftOf(style.align) * taken, y, shown, style.size);
    return taken;
}

double Canvas::textWidth(const std::string& text, const TextStyle& style) {
    if (!hasFonts_) return plainWidth(context_.get(), text, style.size);
    setText(text, style);
    pango_layout_set_width(layout_.get(), -1);
    PangoRectangle extents = {};
    pango_layout_get_extents(layout_.get(), nullptr, &extents);
    return static_cast<double>(extents.width) / PANGO_SCALE;
}

}  // namespace output
