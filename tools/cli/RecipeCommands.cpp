#include <iostream>
#include <memory>

#include "Commands.h"
#include "JsonOutput.h"

// recipe check: what a recipe makes of each module, and every reason it
// would be refused, before a module is touched.
namespace sb::cli {
namespace {

int ExitStatusOf(RecipeFault fault) {
    switch (fault) {
        case RecipeFault::Unreadable: return kExitRecipeUnreadable;
        case RecipeFault::BadField: return kExitRecipeBadField;
        case RecipeFault::FileMissing:
        case RecipeFault::FileRefused: return kExitRecipeFileMissing;
        case RecipeFault::HashDiffers: return kExitRecipeHashDiffers;
    }
    return kExitUsage;
}

void PrintProblems(const RecipeCheck& check) {
    for (const RecipeProblem& problem : check.Problems) std::cerr << problem.Message << '\n';
}

struct CheckOptions {
    std::string recipe;
    bool json = false;
};

void Check(const CheckOptions& options) {
    const RecipeCheck check = CheckRecipe(options.recipe);
    if (options.json) {
        Json steps = Json::array();
        if (check.Taken)
            for (RecipeStep step : RecipeSteps(check.Recipe)) steps.push_back(StepName(step));
        Json problems = Json::array();
        for (const RecipeProblem& problem : check.Problems)
            problems.push_back({{"status", ExitStatusOf(problem.Fault)}, {"message", JsonBytes(problem.Message)}});
        PrintJson({{"recipe", JsonBytes(check.Recipe.Path)},
                   {"sha256", check.Recipe.Sha256},
                   {"steps", std::move(steps)},
                   {"problems", std::move(problems)}});
    } else {
        if (check.Taken) std::cout << RecipePlan(check.Recipe) << std::flush;
        PrintProblems(check);
    }
    if (!check.Ok()) throw CLI::RuntimeError(ExitStatusOf(check.Problems.front().Fault));
}

}  // namespace

Recipe RecipeOrFail(const std::string& path) {
    RecipeCheck check = CheckRecipe(path);
    if (check.Ok()) return std::move(check.Recipe);
    PrintProblems(check);
    throw CLI::RuntimeError(ExitStatusOf(check.Problems.front().Fault));
}

void AddRecipeCommands(CLI::App& app) {
    CLI::App* recipe = app.add_subcommand("recipe", "Production recipes (*.sbrecipe)");
    recipe->require_subcommand(1);
    auto options = std::make_shared<CheckOptions>();
    CLI::App* check = recipe->add_subcommand(
        "check", "Print what the recipe does to each module, and every reason it would be refused");
    check->add_option("recipe", options->recipe, "The recipe (*.sbrecipe)")->required();
    check->add_flag("--json", options->json, "Print the steps and the reasons as one JSON object");
    check->callback([options] { Check(*options); });
}

}  // namespace sb::cli
