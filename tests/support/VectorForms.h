// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "dsp/VectorForm.h"

namespace beatatlas::test {

/** Limits the kernels to a vector form while it lives. */
class FormScope {
public:
    explicit FormScope(VectorForm form) { limitVectorForm(form); }
    ~FormScope() { limitVectorForm(VectorForm::avx512); }
    FormScope(const FormScope&) = delete;
    FormScope& operator=(const FormScope&) = delete;
};

/** Every form that this machine supports, the baseline first. */
inline std::vector<VectorForm> formsOfThisMachine() {
    std::vector<VectorForm> forms;
    for (const VectorForm form : {VectorForm::baseline, VectorForm::avx2, VectorForm::avx512})
        if (form <= widestVectorForm()) forms.push_back(form);
    return forms;
}

inline std::string nameOf(VectorForm form) {
    if (form == VectorForm::avx512) return "AVX-512";
    return form == VectorForm::avx2 ? "AVX2" : "baseline";
}

}  // namespace beatatlas::test
