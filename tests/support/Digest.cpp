// SPDX-License-Identifier: MIT
#include "support/Digest.h"

#include <bit>

namespace beatatlas::test {

void Digest::add(const std::vector<float>& values) {
    for (const float value : values) add(std::bit_cast<std::uint32_t>(value));
}

}  // namespace beatatlas::test
