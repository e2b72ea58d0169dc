// SPDX-License-Identifier: MIT
#include "dsp/filterBankLanes.h"

#include "dsp/filterBankKernel.h"

namespace beatatlas {

namespace {

template <std::size_t kWidth>
struct RunFilterBank {
    BEATATLAS_LANES static void run(FilterBankLanes* lanes, FilterBankTile* tile,
                                    const FilterBankStretch* stretch) {
        FilterBankSteps<kWidth>::run(*lanes, *tile, *stretch, 0,
                                     [](int /*step*/) __attribute__((always_inline)){});
    }
};

}  // namespace

void FilterBankRunner::run(FilterBankLanes& lanes, FilterBankTile& tile,
                           const FilterBankStretch& stretch) {
    runInLanes<RunFilterBank>(&lanes, &tile, &stretch);
}

}  // namespace beatatlas
