#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "config/Types.h"
#include "configfiles/JsonBytes.h"

// Two configurations compared option by option, by what each one's catalog
// makes of its image (GetOptionValue), never by raw bytes alone. The two
// catalogs may differ: options are matched by name (the n-th option of a
// name in one with the n-th of that name in the other).
namespace sb {

// One side's view of an option.
struct OptionSide {
    int32_t Index = -1;  // in the side's catalog; -1 when the catalog has no such option
    std::string Value;   // raw value
    std::string Shown;   // as the tree shows it
    bool Hidden = false; // the side's configuration hides it (or the side's image names no configuration)

    bool Present() const { return Index >= 0; }
};

struct OptionComparison {
    std::string Name;
    OptionSide A;
    OptionSide B;

    // Present on one side only, or shown (or, behind the same text, held)
    // differently.
    bool Differs() const;
};

enum class CompareMode { Differing, All };

struct ConfigComparison {
    // Options of A in A's catalog order, then those only B has.
    std::vector<OptionComparison> Options;

    bool Equal() const;
};

ConfigComparison CompareConfigurations(const DeviceInfo& catalogA, const std::string& imageA,
                                       const DeviceInfo& catalogB, const std::string& imageB,
                                       CompareMode mode = CompareMode::Differing);

// For people, in the shape of kconfig's diffconfig, in the tree's words
// (Name:shown): "-Name:a" for an option only A has, " Name:a -> b" for one
// that changed, "+Name:b" for one only B has, in that order; in the mode
// All the options that agree stand among the changed ones as " Name:a".
// An option that a side's configuration hides is marked behind, with the
// names of the sides.
std::vector<std::string> ComparisonLines(const ConfigComparison& comparison, const std::string& nameA = "A",
                                         const std::string& nameB = "B");

// For scripts: {"equal": bool, "options": [{"name", "differs", "a", "b"}]},
// each side null or {"index", "value", "shown", "hidden"}.
Json ComparisonJson(const ConfigComparison& comparison);

}  // namespace sb
