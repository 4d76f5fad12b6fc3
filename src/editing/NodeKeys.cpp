#include "editing/NodeKeys.h"

#include <stdexcept>

#include "helpers/HexText.h"

namespace sb {
namespace {

constexpr size_t kOptionIndexAt = 6;   // "OPTION" then 8 digits
constexpr size_t kValueWordAt = 15;    // "OPTION", 8 digits, "_" then "VALUE"
constexpr size_t kValueIndexAt = 20;   // ... "VALUE" then 8 digits
constexpr size_t kIndexDigits = 8;

int32_t SignedIndex(const std::string& hex) {
    const double value = HexToUint32(hex);
    if (value > 2147483647.0) throw std::out_of_range("index beyond the 32-bit range");
    return static_cast<int32_t>(value);
}

std::string IndexDigits(const std::string& key, size_t at) {
    if (key.size() < at) throw std::out_of_range("key too short for its index");
    return key.substr(at, kIndexDigits);
}

}  // namespace

NodeKind KindOfKey(const std::string& key) {
    if (key.rfind("OPTION", 0) != 0) return NodeKind::Root;
    if (key.find("VALUE") == kValueWordAt) return NodeKind::Value;
    return NodeKind::Option;
}

int32_t OptionIndexOfKey(const std::string& key) { return SignedIndex(IndexDigits(key, kOptionIndexAt)); }
int32_t ValueIndexOfKey(const std::string& key) { return SignedIndex(IndexDigits(key, kValueIndexAt)); }
int32_t IndexOfTag(const std::string& tag) { return SignedIndex(tag); }

}  // namespace sb
