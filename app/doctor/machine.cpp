// SPDX-License-Identifier: MIT
#include "doctor/machine.h"

#include <fstream>
#include <sstream>

namespace app {

namespace {

/** What stands behind a name and its colon in one of the system's lists; empty where it does not
 *  stand there. */
std::string stated(const char* list, const std::string& name) {
    std::ifstream file(list);
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(name)) continue;
        const std::size_t colon = line.find(':');
        const std::size_t text = line.find_first_not_of(" \t", colon + 1);
        if (colon != std::string::npos && text != std::string::npos) return line.substr(text);
    }
    return {};
}

std::int64_t statedBytes(const std::string& name) {
    std::int64_t kilobytes = 0;
    std::istringstream(stated("/proc/meminfo", name)) >> kilobytes;
    return kilobytes * 1024;
}

}  // namespace

std::string processorName() {
    return stated("/proc/cpuinfo", "model name");
}

// The library chooses by the same question and does not say what it chose; a test compares both.
std::string vectorFormText() {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
        return "AVX-512";
    if (__builtin_cpu_supports("avx2")) return "AVX2";
#endif
    return "baseline";
}

Memory memory() {
    return {statedBytes("MemTotal"), statedBytes("MemAvailable")};
}

}  // namespace app
