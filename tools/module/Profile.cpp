#include "Profile.h"

#include <cctype>
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "EscapedText.h"
#include "helpers/HexText.h"
#include "helpers/TrimBlanks.h"
#include "helpers/WholeFile.h"

namespace sb::module {
namespace {

constexpr int64_t kLongestProfile = 1024 * 1024;

constexpr const char* kBuiltInProfile = R"(
GETSN = 00000001
GETVER = 1.00.00
GETNAME = Virtual module
GETPDATE = 01.01.2024
GETVIN = XXXXXXXXXXXXXXXXX
GETAPPNAME = Virtual firmware
GETAPPVER = 1.00.00
GETHWVER = 1.0
GETAPPINFO = Virtual firmware 1.00.00\r\nNo profile loaded
GETUID = 0000000000000001
)";

bool IsCommandWord(const std::string& key) {
    if (key.empty() || key[0] < 'A' || key[0] > 'Z') return false;
    for (const char c : key)
        if (!((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))) return false;
    return true;
}

// A value in double quotes keeps the blanks at its ends.
std::string ValueOf(const std::string& raw) {
    std::string text = TrimBlanks(raw);
    if (!text.empty() && text.front() == '"') {
        if (text.size() < 2 || text.back() != '"') throw std::invalid_argument("the closing quote is missing");
        text = text.substr(1, text.size() - 2);
    }
    return UnescapeText(text);
}

std::string ImageHex(const std::string& value) {
    const std::string hex = NormalizeHex(value);
    if (hex.empty() != value.empty() || hex.size() % 2 != 0)
        throw std::invalid_argument("GETAPPCFG needs an even number of hex digits");
    return hex;
}

XmodemCheck CheckOf(const std::string& value) {
    if (value == "CRC") return XmodemCheck::Crc;
    if (value == "Checksum") return XmodemCheck::Checksum;
    throw std::invalid_argument("Xmodem is CRC or Checksum");
}

std::string ProductIdOf(const std::string& value) {
    const std::string hex = NormalizeHex(value);
    if (hex.size() != 4 || value.size() != 4) throw std::invalid_argument("ProductId needs four hex digits");
    return hex;
}

// The serial number of the USB identity: the letters and digits of GETSN.
std::string SerialFrom(const ModuleProfile& profile) {
    std::string serial;
    const auto sn = profile.FixedAnswers.find("GETSN");
    if (sn != profile.FixedAnswers.end())
        for (const char c : sn->second)
            if (std::isalnum(static_cast<unsigned char>(c))) serial += c;
    return serial.empty() ? "0001" : serial;
}

void ApplyCommandAnswer(ModuleProfile& profile, const std::string& key, const std::string& value) {
    if (key == "GETAPPCFG")
        profile.ConfigHex = ImageHex(value);
    else if (key == "GETUID")
        profile.Uid = value;
    else if (key == "CLROTP")
        profile.ClearOtpAnswer = value;
    else if (key == "SETAPPCFG" || key == "GETINFOFILE" || key == "BOOT" || key == "RUN")
        throw std::invalid_argument(key + " is answered by the module itself" +
                                    (key == "GETINFOFILE" ? std::string(": name the file with CatalogFile") : ""));
    else
        profile.FixedAnswers[key] = value;
}

void ApplySetting(ModuleProfile& profile, const std::string& key, const std::string& value,
                  const std::filesystem::path& folder) {
    auto path = [&] { return value.empty() ? std::string() : (folder / value).lexically_normal().string(); };
    const std::map<std::string, std::function<void()>> settings = {
        {"CatalogFile", [&] { profile.CatalogFile = path(); }},
        {"FirmwareOut", [&] { profile.FirmwareOut = path(); }},
        {"Xmodem", [&] { profile.Xmodem = CheckOf(value); }},
        {"ReportOk", [&] { profile.ReportOk = value; }},
        {"ReportFailed", [&] { profile.ReportFailed = value; }},
        {"RunAnswer", [&] { profile.RunAnswer = value; }},
        {"UsbSerial", [&] { profile.UsbSerial = value; }},
        {"ProductId", [&] { profile.ProductId = ProductIdOf(value); }},
        {"Description", [&] { profile.Description = value; }},
    };
    const auto setting = settings.find(key);
    if (setting == settings.end()) throw std::invalid_argument("unknown setting \"" + key + "\"");
    setting->second();
}

ModuleProfile ParseProfile(const std::string& text, const std::filesystem::path& folder, const std::string& source) {
    ModuleProfile profile;
    size_t start = 0;
    for (int lineNumber = 1; start < text.size(); ++lineNumber) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = TrimBlanks(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || line[0] == '#') continue;
        try {
            const size_t equals = line.find('=');
            if (equals == std::string::npos) throw std::invalid_argument("a line is KEY = VALUE");
            const std::string key = TrimBlanks(line.substr(0, equals));
            const std::string value = ValueOf(line.substr(equals + 1));
            if (IsCommandWord(key))
                ApplyCommandAnswer(profile, key, value);
            else
                ApplySetting(profile, key, value, folder);
        } catch (const std::invalid_argument& e) {
            throw std::runtime_error(source + ":" + std::to_string(lineNumber) + ": " + e.what());
        }
    }
    if (profile.UsbSerial.empty()) profile.UsbSerial = SerialFrom(profile);
    return profile;
}

}  // namespace

ModuleProfile LoadProfile(const std::string& path) {
    std::string text;
    if (ReadWholeFile(path, text, kLongestProfile) != WholeFileRead::Complete)
        throw std::runtime_error("cannot read the profile " + path);
    return ParseProfile(text, std::filesystem::absolute(path).parent_path(), path);
}

ModuleProfile BuiltInProfile() { return ParseProfile(kBuiltInProfile, std::filesystem::current_path(), "built-in"); }

}  // namespace sb::module
