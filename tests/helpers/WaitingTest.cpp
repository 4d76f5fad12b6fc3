#include <gtest/gtest.h>

#include "VirtualClock.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"

namespace sb {
namespace {

TEST(Waiting, ZeroMillisecondsStillRunsTheEventLoopOnce) {
    test::VirtualClock clock;
    bool ran = false;
    clock.At(clock.Now(), [&] { ran = true; });
    WaitMs(0);
    EXPECT_TRUE(ran);
    EXPECT_GE(clock.PumpCount(), 1);
}

TEST(Waiting, EndsAtTheFirstTickPastTheTarget) {
    test::VirtualClock clock;
    const auto start = clock.Now();
    WaitMs(500);
    EXPECT_EQ(clock.Now() - start, 501);
}

TEST(Waiting, TheWrapOfTheSignedTickEndsTheWait) {
    // The target lies beyond the highest signed tick, so only the test
    // against the start ends this wait.
    test::VirtualClock clock;
    clock.SetNow(0x7FFFFFFFLL - 5);
    const auto start = clock.Now();
    WaitMs(1000);
    EXPECT_LE(clock.Now() - start, 1001);
    EXPECT_LT(clock.Tick(), 0);
}

TEST(Waiting, InputEndsAnInputWaitButNotAPlainOne) {
    test::VirtualClock clock;
    clock.After(3, [&] { clock.NotifyInput(); });
    auto start = clock.Now();
    WaitMsOrInput(10);
    EXPECT_EQ(clock.Now() - start, 3);

    clock.After(3, [&] { clock.NotifyInput(); });
    start = clock.Now();
    WaitMs(10);
    EXPECT_EQ(clock.Now() - start, 11);
}

TEST(TrimBlanks, StripsBlanksTabsAndLineEndsAtBothEndsOnly) {
    const struct { const char* in; const char* out; } cases[] = {
        {"", ""}, {" \t\r\n", ""}, {"\r\nOK\r\n", "OK"}, {" a b ", "a b"}, {"x", "x"},
    };
    for (const auto& c : cases) EXPECT_EQ(TrimBlanks(c.in), c.out) << c.in;
}

}  // namespace
}  // namespace sb
