// SPDX-License-Identifier: MIT
#include "output/picture/plainLetters.h"

#include <cairo.h>

namespace output {

namespace {

constexpr const char* kDots = "...";

void chooseLetters(cairo_t* context, double size) {
    cairo_select_font_face(context, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, size);
}

/** Without its last UTF-8 character. */
void dropLastCharacter(std::string& text) {
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
        text.pop_back();
    if (!text.empty()) text.pop_back();
}

}  // namespace

double plainWidth(cairo_t* context, const std::string& text, double size) {
    chooseLetters(context, size);
    cairo_text_extents_t extents = {};
    cairo_text_extents(context, text.c_str(), &extents);
    return extents.x_advance;
}

std::string fittedPlainly(cairo_t* context, const std::string& text, double size, double width) {
    if (plainWidth(context, text, size) <= width) return text;
    std::string kept = text;
    while (!kept.empty() && plainWidth(context, kept + kDots, size) > width)
        dropLastCharacter(kept);
    return kept + kDots;
}

void showPlainLetters(cairo_t* context, double x, double y, const std::string& text, double size) {
    chooseLetters(context, size);
    cairo_move_to(context, x, y);
    cairo_show_text(context, text.c_str());
}

}  // namespace output
