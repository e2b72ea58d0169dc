// SPDX-License-Identifier: MIT
// This program's sleeps are counted instead of slept: its link options lead nanosleep here.
#include "dsp/processorYield.h"

#include <atomic>
#include <ctime>
#include <thread>

#include <gtest/gtest.h>

namespace {

std::atomic<int> sleeps{0};

}  // namespace

// The linker asks for this name.
// NOLINTNEXTLINE(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)
extern "C" int __wrap_nanosleep(const timespec* wanted, timespec*) {
    EXPECT_EQ(wanted->tv_sec, 0);
    EXPECT_EQ(wanted->tv_nsec, 0);
    ++sleeps;
    return 0;
}

namespace beatatlas {
namespace {

int sleepsOf(const auto& work) {
    sleeps = 0;
    work();
    return sleeps;
}

TEST(ProcessorYield, SleepsOnceForNoTime) {
    EXPECT_EQ(sleepsOf([] { yieldProcessor(); }), 1);
}

TEST(ProcessorYield, DoesNothingAtUnbrokenWork) {
    EXPECT_EQ(sleepsOf([] {
                  const UnbrokenWork work;
                  yieldProcessor();
              }),
              0);
}

TEST(ProcessorYield, SleepsAgainOnlyAfterTheOutermostScope) {
    EXPECT_EQ(sleepsOf([] {
                  {
                      const UnbrokenWork outer;
                      { const UnbrokenWork inner; }
                      yieldProcessor();
                  }
                  yieldProcessor();
              }),
              1);
}

TEST(ProcessorYield, SleepsInThreadsBesideUnbrokenWork) {
    EXPECT_EQ(sleepsOf([] {
                  const UnbrokenWork work;
                  std::thread(yieldProcessor).join();
              }),
              1);
}

}  // namespace
}  // namespace beatatlas
