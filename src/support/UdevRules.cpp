#include "support/UdevRules.h"

#include <fnmatch.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <sstream>

namespace sb::support {
namespace {

const char* const kRuleFolders[] = {"/etc/udev/rules.d", "/run/udev/rules.d", "/usr/lib/udev/rules.d",
                                    "/lib/udev/rules.d"};

// KEY=="value" pairs of a rule line; assignments (=, +=) are left out.
std::map<std::string, std::string> Comparisons(const std::string& line) {
    std::map<std::string, std::string> found;
    for (std::size_t at = line.find("==\""); at != std::string::npos; at = line.find("==\"", at + 3)) {
        std::size_t start = line.rfind(',', at);
        start = start == std::string::npos ? 0 : start + 1;
        while (start < at && std::isspace(static_cast<unsigned char>(line[start]))) ++start;
        const std::size_t end = line.find('"', at + 3);
        if (end == std::string::npos) break;
        found[line.substr(start, at - start)] = line.substr(at + 3, end - at - 3);
    }
    return found;
}

// udev's patterns: shell globs, alternatives split by '|'.
bool GlobMatches(const std::string& pattern, const std::string& value) {
    std::istringstream alternatives(pattern);
    std::string one;
    while (std::getline(alternatives, one, '|'))
        if (::fnmatch(one.c_str(), value.c_str(), 0) == 0) return true;
    return false;
}

std::string WithoutLeadingZeros(const std::string& hex) {
    const auto first = hex.find_first_not_of('0');
    return first == std::string::npos ? "0" : hex.substr(first);
}

bool LineMatches(const std::string& line, const std::string& vendor, const std::string& product) {
    const auto comparisons = Comparisons(line);
    bool namesVendor = false;
    for (const auto& [key, pattern] : comparisons) {
        std::string value;
        if (key == "ATTRS{idVendor}" || key == "ATTR{idVendor}" || key == "ENV{ID_VENDOR_ID}") {
            value = vendor;
            namesVendor = true;
        } else if (key == "ATTRS{idProduct}" || key == "ATTR{idProduct}" || key == "ENV{ID_MODEL_ID}") {
            value = product;
        } else if (key == "ENV{PRODUCT}") {
            // "483/5740/200": vendor, product and release without leading zeros.
            value = WithoutLeadingZeros(vendor) + "/" + WithoutLeadingZeros(product) + "/0";
            namesVendor = true;
        } else {
            continue;
        }
        if (!GlobMatches(pattern, value)) return false;
    }
    return namesVendor;
}

}  // namespace

std::vector<RuleFile> InstalledRules(const SystemView& system) {
    std::vector<RuleFile> rules;
    for (const char* folder : kRuleFolders) {
        auto names = system.List(folder);
        std::sort(names.begin(), names.end());
        for (const auto& name : names) {
            if (name.size() < 6 || name.compare(name.size() - 6, 6, ".rules") != 0) continue;
            const std::string path = std::string(folder) + "/" + name;
            if (auto text = system.Read(path)) rules.push_back({path, std::move(*text)});
        }
    }
    return rules;
}

const UsbIdentity* ModuleIdentity(const SerialDevice& device) {
    auto lower = [](std::string text) {
        for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return text;
    };
    const std::string vendor = lower(device.Vendor);
    const std::string product = lower(device.Product);
    if (vendor == kRunningUsb.Vendor && product.rfind("17", 0) == 0) return &kRunningUsb;
    if (vendor == kBootUsb.Vendor && product == kBootUsb.Product) return &kBootUsb;
    return nullptr;
}

int MatchingLine(const std::string& text, const std::string& vendor, const std::string& product) {
    std::istringstream lines(text);
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        const auto first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#') continue;
        if (LineMatches(line, vendor, product)) return number;
    }
    return 0;
}

}  // namespace sb::support
