#include "configfiles/ConfigCompare.h"

#include <algorithm>
#include <map>

#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "helpers/BitMasks.h"

namespace sb {
namespace {

// What one side's tree makes of its options.
class SideView {
public:
    SideView(const DeviceInfo& catalog, const std::string& image) : catalog_(catalog), image_(image) {
        const int32_t cfg = FindPredefCfgById(catalog, ImageId(image));
        if (cfg >= 0) visible_ = &catalog.PredefCfgs.Items[static_cast<size_t>(cfg)].VisibleMask;
    }

    OptionSide At(int32_t index) const {
        OptionSide side;
        side.Index = index;
        side.Value = GetOptionValue(image_, catalog_.Options.Items[static_cast<size_t>(index)], side.Shown);
        side.Hidden = visible_ == nullptr || !TestBit(*visible_, index, 1);
        return side;
    }

    const std::vector<OptionRec>& Options() const { return catalog_.Options.Items; }

private:
    const DeviceInfo& catalog_;
    const std::string& image_;
    const std::string* visible_ = nullptr;
};

// B's option indexes by name, each list in catalog order; a match takes the
// first one left.
std::map<std::string, std::vector<int32_t>> IndexesByName(const std::vector<OptionRec>& options) {
    std::map<std::string, std::vector<int32_t>> byName;
    for (int32_t i = static_cast<int32_t>(options.size()) - 1; i >= 0; --i)
        byName[options[static_cast<size_t>(i)].Name].push_back(i);  // reversed: the next match is at the back
    return byName;
}

std::string Mark(const OptionComparison& option, const std::string& nameA, const std::string& nameB) {
    const bool a = option.A.Present() && option.A.Hidden;
    const bool b = option.B.Present() && option.B.Hidden;
    if (a && b) return "  (hidden in " + nameA + " and " + nameB + ")";
    if (a || b) return "  (hidden in " + (a ? nameA : nameB) + ")";
    return "";
}

// A shown text, with the raw value behind it when the two sides show the
// same text for different values.
std::string Shown(const OptionSide& side, bool sameText) {
    return sameText ? side.Shown + " [" + side.Value + "]" : side.Shown;
}

std::string Line(const OptionComparison& option) {
    if (!option.B.Present()) return "-" + option.Name + ":" + option.A.Shown;
    if (!option.A.Present()) return "+" + option.Name + ":" + option.B.Shown;
    if (!option.Differs()) return " " + option.Name + ":" + option.A.Shown;
    const bool sameText = option.A.Shown == option.B.Shown;
    return " " + option.Name + ":" + Shown(option.A, sameText) + " -> " + Shown(option.B, sameText);
}

// diffconfig's order: what only A has, what both have, what only B has.
int Group(const OptionComparison& option) { return !option.B.Present() ? 0 : !option.A.Present() ? 2 : 1; }

Json SideJson(const OptionSide& side) {
    if (!side.Present()) return nullptr;
    return {{"index", side.Index}, {"value", JsonBytes(side.Value)}, {"shown", JsonBytes(side.Shown)},
            {"hidden", side.Hidden}};
}

}  // namespace

bool OptionComparison::Differs() const {
    return !A.Present() || !B.Present() || A.Shown != B.Shown || A.Value != B.Value;
}

bool ConfigComparison::Equal() const {
    return std::none_of(Options.begin(), Options.end(), [](const OptionComparison& o) { return o.Differs(); });
}

ConfigComparison CompareConfigurations(const DeviceInfo& catalogA, const std::string& imageA,
                                       const DeviceInfo& catalogB, const std::string& imageB, CompareMode mode) {
    const SideView a(catalogA, imageA);
    const SideView b(catalogB, imageB);
    auto unmatched = IndexesByName(b.Options());
    std::vector<bool> matched(b.Options().size(), false);
    ConfigComparison comparison;
    auto keep = [&](OptionComparison option) {
        if (mode == CompareMode::All || option.Differs()) comparison.Options.push_back(std::move(option));
    };
    for (int32_t i = 0; i < static_cast<int32_t>(a.Options().size()); ++i) {
        OptionComparison option{a.Options()[static_cast<size_t>(i)].Name, a.At(i), {}};
        std::vector<int32_t>& candidates = unmatched[option.Name];
        if (!candidates.empty()) {
            option.B = b.At(candidates.back());
            matched[static_cast<size_t>(candidates.back())] = true;
            candidates.pop_back();
        }
        keep(std::move(option));
    }
    for (int32_t j = 0; j < static_cast<int32_t>(b.Options().size()); ++j)
        if (!matched[static_cast<size_t>(j)]) keep({b.Options()[static_cast<size_t>(j)].Name, {}, b.At(j)});
    return comparison;
}

std::vector<std::string> ComparisonLines(const ConfigComparison& comparison, const std::string& nameA,
                                         const std::string& nameB) {
    std::vector<std::string> lines;
    for (int group = 0; group < 3; ++group)
        for (const OptionComparison& option : comparison.Options)
            if (Group(option) == group) lines.push_back(Line(option) + Mark(option, nameA, nameB));
    return lines;
}

Json ComparisonJson(const ConfigComparison& comparison) {
    Json options = Json::array();
    for (const OptionComparison& option : comparison.Options)
        options.push_back({{"name", JsonBytes(option.Name)},
                           {"differs", option.Differs()},
                           {"a", SideJson(option.A)},
                           {"b", SideJson(option.B)}});
    return {{"equal", comparison.Equal()}, {"options", std::move(options)}};
}

}  // namespace sb
