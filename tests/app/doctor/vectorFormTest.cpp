// SPDX-License-Identifier: MIT
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "doctor/machine.h"
#include "dsp/lanes/VectorForm.h"

namespace app {
namespace {

TEST(DoctorVectorForm, IsTheOneThatTheLibraryTakes) {
    const std::map<beatatlas::VectorForm, std::string> names = {
        {beatatlas::VectorForm::baseline, "baseline"},
        {beatatlas::VectorForm::avx2, "AVX2"},
        {beatatlas::VectorForm::avx512, "AVX-512"}};
    EXPECT_EQ(vectorFormText(), names.at(beatatlas::widestVectorForm()));
}

}  // namespace
}  // namespace app
