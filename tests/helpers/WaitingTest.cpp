#include <gtest/gtest.h>

#include "VirtualClock.h"
#include "helpers/TrimBlanks.h"
#include "helpers/Waiting.h"

namespace sb {
namespace {

TEST(Waiting, RunsTheEventLoopFirstAndEndsAtTheFirstTickPastTheTarget) {
    test::VirtualClock clock;
    int64_t ranAt = -1;
    clock.At(clock.Now(), [&] { ranAt = clock.Now(); });
    const auto start = clock.Now();
    WaitMs(0);
    EXPECT_EQ(ranAt, start);
    // An event on the target's own tick wakes the wait there, and it goes on.
    clock.After(500, [] {});
    const auto second = clock.Now();
    WaitMs(500);
    EXPECT_EQ(clock.Now() - second, 501);
}

TEST(Waiting, TheWrapOfTheSignedTickEndsTheWait) {
    // The target lies beyond the highest signed tick, so only the test
    // against the start ends this wait.
    test::VirtualClock clock;
    clock.SetNow(0x7FFFFFFFLL - 5);
    WaitMs(1000);
    EXPECT_LT(clock.Tick(), 0);
}

TEST(Waiting, InputEndsAnInputWaitButNotAPlainOne) {
    test::VirtualClock clock;
    for (const bool input : {true, false}) {
        clock.After(3, [&] { clock.NotifyInput(); });
        const auto start = clock.Now();
        input ? WaitMsOrInput(10) : WaitMs(10);
        EXPECT_EQ(clock.Now() - start, input ? 3 : 11);
    }
}

TEST(TrimBlanks, StripsBlanksTabsAndLineEndsAtBothEndsOnly) {
    const std::pair<const char*, const char*> cases[] = {{" \t\r\n", ""}, {"\r\nOK\r\n", "OK"}, {" a b ", "a b"}};
    for (const auto& [in, out] : cases) EXPECT_EQ(TrimBlanks(in), out) << in;
}

}  // namespace
}  // namespace sb
