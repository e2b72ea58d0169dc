// SPDX-License-Identifier: MIT
#pragma once

#include <string>

// As cairo.h declares it.
// NOLINTNEXTLINE(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp, modernize-use-using)
typedef struct _cairo cairo_t;

namespace output {

/** @name Text where no font is installed Cairo has simple built-in Latin letters, which Pango does
 *  not use. UTF-8; sizes, widths and positions are in the context's units.
 *  @{ */
double plainWidth(cairo_t* context, const std::string& text, double size);

/** The text, or its beginning followed by dots when it is wider than that. */
std::string fittedPlainly(cairo_t* context, const std::string& text, double size, double width);

void showPlainLetters(cairo_t* context, double x, double y, const std::string& text, double size);
/** @} */

}  // namespace output
