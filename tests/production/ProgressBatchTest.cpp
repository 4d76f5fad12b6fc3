#include "production/ProgressBatch.h"

#include <gtest/gtest.h>

#include "../helpers/TempFolder.h"

namespace sb {
namespace {

// Each case: the blocks of a transfer of 6000 bytes as [ms, blocks, bytes],
// the blocks that are passed on at once, and the one held back for the end.
TEST(ProgressBatch, PassesAFewBlocksASecondAndNeverTheStartOrTheEndLate) {
    for (const auto& c : test::TestCases("production/progress-batches.json")) {
        SCOPED_TRACE(c["name"].get<std::string>());
        ProgressBatch batch(std::chrono::milliseconds(250));
        std::vector<int> passed;
        for (const auto& b : c["blocks"]) {
            const auto at = ProgressBatch::Clock::time_point(std::chrono::milliseconds(b[0].get<int>()));
            if (const auto p = batch.Take({b[1], b[2], 6000}, at)) passed.push_back(p->Blocks);
        }
        EXPECT_EQ(passed, c["passed"].get<std::vector<int>>());
        const auto rest = batch.Rest();
        EXPECT_EQ(rest ? nlohmann::json(rest->Blocks) : nlohmann::json(), c["rest"]);
    }
}

}  // namespace
}  // namespace sb
