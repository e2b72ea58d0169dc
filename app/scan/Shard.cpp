// SPDX-License-Identifier: MIT
#include "scan/Shard.h"

#include <xxhash.h>

namespace app {

bool Shard::has(const std::string& path) const {
    return XXH64(path.data(), path.size(), 0) % count == number - 1;
}

}  // namespace app
