// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace output {

/** Bytes as base64 (RFC 4648, with padding). */
std::string base64(std::string_view bytes);

/** What a content security policy calls a text by which it is allowed: "'sha256-…'". */
std::string policyHash(std::string_view text);

}  // namespace output
