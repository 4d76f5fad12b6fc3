#include "CommandSet.h"

#include <algorithm>
#include <cctype>

#include "helpers/NumberScan.h"
#include "helpers/WholeFile.h"

namespace sb::module {
namespace {

constexpr const char* kError = "Error!";
constexpr int64_t kLongestCatalog = 16 * 1024 * 1024;

bool IsHexImage(const std::string& text) {
    return !text.empty() && text.size() % 2 == 0 &&
           std::all_of(text.begin(), text.end(), [](char c) { return HexDigitValue(c) >= 0; });
}

// Cut to `length` characters, or filled behind with `fill`.
std::string Resized(std::string text, int length, char fill) {
    text.resize(static_cast<size_t>(length), fill);
    return text;
}

}  // namespace

CommandSet::CommandSet(const ModuleProfile& profile, const AnswerFaults& faults)
    : profile_(profile), faults_(faults), imageHex_(profile.ConfigHex) {}

std::string CommandSet::Answer(const std::string& line) {
    const size_t blank = line.find(' ');
    const std::string word = line.substr(0, blank);
    const bool hasArgument = blank != std::string::npos;
    const std::string argument = hasArgument ? line.substr(blank + 1) : std::string();

    if (faults_.errorAll || faults_.errorOn.count(word)) return kError;
    if (word == "SETAPPCFG" && hasArgument) return SetConfiguration(argument);
    if (word == "CLROTP" && hasArgument) return ClearOtp(argument);
    if (hasArgument) return kError;
    if (word == "GETAPPCFG") return Configuration();
    if (word == "GETINFOFILE") return Catalog();
    if (word == "GETUID") return ReportedUid();
    const auto fixed = profile_.FixedAnswers.find(word);
    return fixed == profile_.FixedAnswers.end() ? kError : fixed->second;
}

std::string CommandSet::Configuration() const {
    if (imageHex_.empty()) return kError;
    if (faults_.configLength < 0) return imageHex_;
    return Resized(imageHex_, 2 * faults_.configLength, '0');
}

// Read at every request, so that a catalog edited while the module runs is
// served as it is now.
std::string CommandSet::Catalog() const {
    std::string text;
    if (faults_.catalogMissing || profile_.CatalogFile.empty() ||
        ReadWholeFile(profile_.CatalogFile, text, kLongestCatalog) != WholeFileRead::Complete)
        return kError;
    if (faults_.catalogBroken) text.resize(text.size() / 2);
    return text;
}

std::string CommandSet::ReportedUid() const {
    if (profile_.Uid.empty()) return kError;
    std::string uid = profile_.Uid;
    // The last character turned into another one, so that CLROTP refuses it.
    if (faults_.wrongUid) uid.back() = uid.back() == '0' ? '1' : '0';
    if (faults_.uidLength >= 0) uid = Resized(uid, faults_.uidLength, '0');
    return uid;
}

// The image must be hex and as long as the profile's image: the module's
// configuration has one length.
std::string CommandSet::SetConfiguration(const std::string& hex) {
    if (!IsHexImage(hex) || (!profile_.ConfigHex.empty() && hex.size() != profile_.ConfigHex.size())) return kError;
    if (!faults_.ignoreConfigWrites) imageHex_ = hex;
    std::transform(imageHex_.begin(), imageHex_.end(), imageHex_.begin(),
                   [](char c) { return static_cast<char>(std::toupper(static_cast<unsigned char>(c))); });
    return faults_.lowerCaseOk ? "ok" : "OK";
}

std::string CommandSet::ClearOtp(const std::string& uid) const {
    return !profile_.Uid.empty() && uid == profile_.Uid ? profile_.ClearOtpAnswer : kError;
}

}  // namespace sb::module
