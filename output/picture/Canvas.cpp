// SPDX-License-Identifier: MIT
#include "output/picture/Canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <cairo.h>

namespace output {

namespace {

constexpr const char* kEllipsis = "…";

/** Without its last UTF-8 character. */
void dropLastCharacter(std::string& text) {
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
        text.pop_back();
    if (!text.empty()) text.pop_back();
}

}  // namespace

Canvas::Canvas(cairo_surface_t* surface, double scale) : context_(cairo_create(surface)) {
    cairo_scale(context_.get(), scale, scale);
}

void Canvas::ContextDestroy::operator()(cairo_t* context) const {
    cairo_destroy(context);
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

void Canvas::verticalLine(double x, double top, double bottom, double width, const Color& color) {
    fillRect({std::round(x - width / 2.0), top, width, bottom - top}, color);
}

void Canvas::setFont(const TextStyle& style) {
    cairo_select_font_face(context_.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context_.get(), style.size);
}

void Canvas::text(double x, double y, const std::string& text, const TextStyle& style) {
    const double width = style.align == Align::left ? 0.0 : textWidth(text, style);
    setFont(style);
    setColor(style.color);
    cairo_move_to(context_.get(), style.align == Align::center ? x - width / 2.0 : x - width, y);
    cairo_show_text(context_.get(), text.c_str());
}

double Canvas::textWidth(const std::string& text, const TextStyle& style) {
    setFont(style);
    cairo_text_extents_t extents = {};
    cairo_text_extents(context_.get(), text.c_str(), &extents);
    return extents.x_advance;
}

std::string Canvas::fitted(const std::string& text, const TextStyle& style, double width) {
    if (textWidth(text, style) <= width) return text;
    std::string kept = text;
    while (!kept.empty() && textWidth(kept + kEllipsis, style) > width) dropLastCharacter(kept);
    return kept + kEllipsis;
}

}  // namespace output
