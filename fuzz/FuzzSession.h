// SPDX-License-Identifier: MIT
#pragma once

#include "FuzzInput.h"
#include "support/ExportSet.h"

namespace beatatlas::fuzz {

using test::ExportSet;

/** Tests one session: any calls in any order, and after each a check of what the interface
 *  promises. */
class FuzzSession {
public:
    FuzzSession(const ExportSet& exports, FuzzInput& input);
    ~FuzzSession();
    FuzzSession(const FuzzSession&) = delete;
    FuzzSession& operator=(const FuzzSession&) = delete;

    /** Makes one call; feeding subtracts its frames from the budget. */
    void step(int& frameBudget);

private:
    int declaredLength() const;
    void feed(ExportSet::Feed call, int& frameBudget);
    void feedNothing();
    void readState();
    void readBeats();
    void readWaves();
    using WaveGetter = int (*)(void*, BA_WaveInfo*, int);
    int readWave(WaveGetter getter, int most, int seen);
    void readZoom();
    void readKey();

    const ExportSet& exports_;
    FuzzInput& input_;
    void* handle_ = nullptr;
    int totalSamples_ = 0;
    int rate_ = 0;
    int loudSeen_ = 0;
    int dotsSeen_ = 0;
    bool isInert_ = false;
    bool fedOnlyAudio_ = true;
    bool wasAnalyzed_ = false;
};

/** Calls the four utilities through a session's handle, on buffers of the stated lengths. */
void callUtility(const ExportSet& exports, void* handle, FuzzInput& input);

/** Calls every function with a null handle; only neutral answers are allowed. */
void callWithNull(const ExportSet& exports);

}  // namespace beatatlas::fuzz
