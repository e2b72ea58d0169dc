// SPDX-License-Identifier: MIT
#include "base/fileLimit.h"

#include <algorithm>
#include <limits>

#include <sys/resource.h>

namespace base {

std::int64_t raiseFileLimit() {
    struct rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    getrlimit(RLIMIT_NOFILE, &limit);
    constexpr auto kMost = static_cast<rlim_t>(std::numeric_limits<std::int64_t>::max());
    return static_cast<std::int64_t>(std::min(limit.rlim_cur, kMost));
}

}  // namespace base
