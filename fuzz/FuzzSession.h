// SPDX-License-Identifier: MIT
#pragma once

#include "FuzzInput.h"
#include "support/ExportSet.h"

namespace beatatlas::fuzz {

using test::ExportSet;

/** One session under fire: any call in any order, and after each what the interface promises about its answers. */
class FuzzSession {
public:
    FuzzSession(const ExportSet& exports, FuzzInput& input);
    ~FuzzSession();
    FuzzSession(const FuzzSession&) = delete;
    FuzzSession& operator=(const FuzzSession&) = delete;

    /** Makes one call; feeding takes its frames off the budget. */
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

/** The four utilities through a session's handle, on buffers of the stated lengths. */
void callUtility(const ExportSet& exports, void* handle, FuzzInput& input);

/** Every function with a null handle: neutral answers only. */
void callWithNull(const ExportSet& exports);

}  // namespace beatatlas::fuzz
