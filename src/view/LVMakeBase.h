// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** What the beat sensor knows of a loudness view: where to send the bands it has filtered already.
 *
 *  The view's mid and high bands are bands of the beat sensor. Its low band is one of its own, the
 *  band-pass of these figures, which costs the sensor nothing to filter beside the others. */
class LVMakeBase {
public:
    static constexpr float kLowBandHz = 150.0F;
    static constexpr float kLowBandQ = 0.9F;

    LVMakeBase() = default;
    virtual ~LVMakeBase() = default;
    LVMakeBase(const LVMakeBase&) = delete;
    LVMakeBase& operator=(const LVMakeBase&) = delete;

    /** Takes n mono samples (full scale ±1.0) and, where not null, their rectified low, mid and
     *  high bands. A band that is handed over must be handed over from the start of the track to
     *  its end. Returns 1 when all n samples were used, 0 when a strip ran past its end. */
    virtual int analyzePeak(const float* in, float* low, float* mid, float* high, int n) = 0;
};

}  // namespace beatatlas
