// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** What the beat sensor knows of a loudness view: a place to send its bands to.
 *
 *  The view's mid and high bands are bands of the beat sensor. Its low band is one of its own, the
 *  band-pass of these figures. */
class LVMakeBase {
public:
    static constexpr float kLowBandHz = 150.0F;
    static constexpr float kLowBandQ = 0.9F;

    LVMakeBase() = default;
    virtual ~LVMakeBase() = default;
    LVMakeBase(const LVMakeBase&) = delete;
    LVMakeBase& operator=(const LVMakeBase&) = delete;

    /** Takes n mono samples (full scale ±1.0) and their rectified low, mid and high bands, filtered
     *  from the start of the track on. Returns 1 when all n samples were used, 0 when nothing
     *  was. */
    virtual int analyzePeak(const float* in, float* low, float* mid, float* high, int n) = 0;
};

}  // namespace beatatlas
