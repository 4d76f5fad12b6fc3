#include <gtest/gtest.h>

#include <filesystem>

#include "../helpers/TempFolder.h"
#include "production/Recipe.h"

namespace sb::test {
namespace {

const char* FaultName(RecipeFault fault) {
    switch (fault) {
        case RecipeFault::Unreadable: return "Unreadable";
        case RecipeFault::BadField: return "BadField";
        case RecipeFault::FileMissing: return "FileMissing";
        case RecipeFault::HashDiffers: return "HashDiffers";
        case RecipeFault::FileRefused: return "FileRefused";
    }
    return "";
}

// Each case of recipe-cases.json: its files, and every problem of its recipe
// in order (the fault and a part of the message, $FOLDER the case's folder);
// for a recipe without problems, the steps of a module and who is on the order.
TEST(Recipe, EveryReasonToRefuseARecipeIsNamed) {
    for (const nlohmann::json& c : TestCases("production/recipe-cases.json")) {
        SCOPED_TRACE(c["name"].get<std::string>());
        TempFolder folder(c["name"].get<std::string>());
        for (const auto& [name, text] : c["files"].items()) {
            std::filesystem::create_directories(std::filesystem::path(folder.File(name)).parent_path());
            TempFolder::Write(folder.File(name), Bytes(text.get<std::string>()));
        }
        const RecipeCheck check = CheckRecipe(folder.File(c.value("recipe", "r.sbrecipe")));
        ASSERT_EQ(check.Problems.size(), c["problems"].size()) << (check.Ok() ? "" : check.Problems[0].Message);
        for (size_t i = 0; i < check.Problems.size(); ++i) {
            std::string part = c["problems"][i][1];
            if (part.rfind("$FOLDER", 0) == 0) part.replace(0, 7, folder.Path().string());
            EXPECT_EQ(FaultName(check.Problems[i].Fault), c["problems"][i][0].get<std::string>()) << i;
            EXPECT_NE(check.Problems[i].Message.find(part), std::string::npos) << check.Problems[i].Message;
        }
        std::vector<std::string> steps;
        for (RecipeStep step : RecipeSteps(check.Recipe)) steps.push_back(StepName(step));
        if (c.contains("steps")) {
            EXPECT_EQ(steps, c["steps"].get<std::vector<std::string>>());
        }
        const nlohmann::json onOrder = c.value("on_order", nlohmann::json::object());
        for (const auto& [serial, on] : onOrder.items())
            EXPECT_EQ(OnOrder(check.Recipe, serial), on.get<bool>()) << serial;
    }
}

}  // namespace
}  // namespace sb::test
