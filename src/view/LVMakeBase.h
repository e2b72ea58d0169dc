// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** What the beat sensor knows of a loudness view: a place to send the bands it has filtered already. */
class LVMakeBase {
public:
    LVMakeBase() = default;
    virtual ~LVMakeBase() = default;
    LVMakeBase(const LVMakeBase&) = delete;
    LVMakeBase& operator=(const LVMakeBase&) = delete;

    /** Takes n mono samples (full scale ±1.0) and, where not null, their rectified low, mid and high bands.
     *  Returns 1 when all n samples were used, 0 when a strip ran past its end. */
    virtual int analyzePeak(const float* in, float* low, float* mid, float* high, int n) = 0;
};

}  // namespace beatatlas
