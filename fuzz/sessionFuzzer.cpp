// SPDX-License-Identifier: MIT
// Any calls of both interfaces in any order, on up to three sessions at a time. An input is limited
// to 120,000 frames, eight sessions and a hundred calls, so that none takes long.
#include <array>
#include <memory>

#include "FuzzSession.h"
#include "FuzzersRoundingMode.h"

namespace {

using namespace beatatlas::fuzz;
using beatatlas::test::mangledExports;
using beatatlas::test::plainExports;

constexpr int kMostFrames = 120000;
constexpr int kMostSessions = 8;
constexpr int kMostCalls = 100;
constexpr int kMostUtilityCalls = 4;

const ExportSet& exportsOf(FuzzInput& input) {
    return input.flag() ? plainExports() : mangledExports();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const FuzzersRoundingMode mode;
    FuzzInput input(bytes, count);
    std::array<std::unique_ptr<FuzzSession>, 3> sessions;
    int frames = kMostFrames;
    int creates = 0;
    int utilities = 0;
    for (int call = 0; call < kMostCalls && !input.isEmpty(); ++call) {
        const int kind = input.between(0, 63);
        auto& session = sessions[static_cast<std::size_t>(kind % 3)];
        if (kind == 63) {
            callWithNull(exportsOf(input));
        } else if (kind >= 60) {
            session.reset();
        } else if (kind >= 57 && utilities++ < kMostUtilityCalls) {
            static int anyAddress = 0;  // the utilities only require a handle that is not null
            callUtility(exportsOf(input), &anyAddress, input);
        } else if (session != nullptr) {
            session->step(frames);
        } else if (creates++ < kMostSessions) {
            session = std::make_unique<FuzzSession>(exportsOf(input), input);
        }
    }
    return 0;
}
