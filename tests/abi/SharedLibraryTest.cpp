// SPDX-License-Identifier: MIT
// The shared file as a host that loads it at run time sees it: by name alone.
#include <dlfcn.h>

#include <vector>

#include <gtest/gtest.h>

#include "beatatlas/records.h"

namespace {

class SharedLibraryTest : public ::testing::Test {
protected:
    void SetUp() override {
        library_ = dlopen(BEATATLAS_SHARED_FILE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library_, nullptr) << dlerror();
    }
    void TearDown() override { dlclose(library_); }

    template <class Function>
    Function* named(const char* name) {
        return reinterpret_cast<Function*>(dlsym(library_, name));
    }

private:
    void* library_ = nullptr;
};

TEST_F(SharedLibraryTest, PlainAndMangledNamesAreTwoFunctions) {
    auto* plain = named<int(void*)>("BA_GetBpm");
    auto* mangled = named<int(void*)>("_Z9BA_GetBpmPv");
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(mangled, nullptr);
    EXPECT_NE(plain, mangled);
    EXPECT_EQ(plain(nullptr), 0);
    EXPECT_EQ(mangled(nullptr), 0);
}

// The call that a host makes which was told int where the library says bool: not the declared type, on purpose.
__attribute__((no_sanitize("undefined"))) int callReadingInt(int (*function)(void*),
                                                             void* session) {
    return function(session);
}

// Hosts written in C before it had bool, or in other languages, read the result as an int.
TEST_F(SharedLibraryTest, AnalyzedIsZeroOrOneWhenReadAsInt) {
    auto* create = named<void*(int, int, bool, bool, bool)>("BA_CreateConst44k");
    auto* feed = named<void(void*, float*, float*, int)>("BA_SetSample");
    auto* release = named<void(void*)>("BA_Release");
    for (const char* name : {"BA_Analyzed", "_Z11BA_AnalyzedPv"}) {
        auto* analyzed = named<int(void*)>(name);
        ASSERT_NE(analyzed, nullptr);
        EXPECT_EQ(callReadingInt(analyzed, nullptr), 0);
        void* session = create(1000, 0, false, false, false);
        EXPECT_EQ(callReadingInt(analyzed, session), 0);
        std::vector<float> silence(1000, 0.0F);
        feed(session, silence.data(), silence.data(), 1000);
        EXPECT_EQ(callReadingInt(analyzed, session), 1);
        release(session);
    }
}

TEST_F(SharedLibraryTest, HandleOfOneSetServesTheOther) {
    void* session = named<void*(int, int, bool, bool, bool)>("_Z18BA_CreateSimple48kiibbb")(
        48000, 0, true, true, false);
    ASSERT_NE(session, nullptr);
    std::vector<float> silence(48000, 0.0F);
    named<void(void*, float*, float*, int)>("BA_SetSample")(session, silence.data(), silence.data(),
                                                            48000);
    EXPECT_EQ(
        named<int(void*, BA_WaveInfo*)>("_Z14BA_GetZoomWavePvP11BA_WaveInfo")(session, nullptr),
        150);
    named<void(void*)>("BA_Release")(session);
}

}  // namespace
