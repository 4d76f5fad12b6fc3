#include "editing/OptionFilter.h"

#include "config/ConfigTool.h"

namespace sb {
namespace {

// Latin-1: A-Z and the accented capitals À-Þ (but ×) have their small
// letter 32 places on.
char Folded(char c) {
    const auto byte = static_cast<unsigned char>(c);
    const bool capital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
    return capital ? static_cast<char>(byte + 32) : c;
}

std::string FoldedText(const std::string& text) {
    std::string folded(text);
    for (char& c : folded) c = Folded(c);
    return folded;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::vector<std::string> SearchWords(const std::string& search) {
    std::vector<std::string> words;
    std::string word;
    for (const char c : search + ' ') {
        if (!IsBlank(c)) {
            word += Folded(c);
        } else if (!word.empty()) {
            words.push_back(std::move(word));
            word.clear();
        }
    }
    return words;
}

bool HoldsEveryWord(const std::vector<std::string>& words, const std::string& name, const std::string& shown) {
    if (words.empty()) return true;
    const std::string foldedName = FoldedText(name);
    const std::string foldedShown = FoldedText(shown);
    for (const std::string& word : words)
        if (foldedName.find(word) == std::string::npos && foldedShown.find(word) == std::string::npos) return false;
    return true;
}

std::vector<bool> FilterOptions(const DeviceInfo& device, const std::string& image,
                                const std::vector<std::string>& words) {
    std::vector<bool> passing(device.Options.Items.size(), true);
    if (words.empty()) return passing;
    for (size_t i = 0; i < passing.size(); ++i) {
        const OptionRec& option = device.Options.Items[i];
        std::string shown;
        GetOptionValue(image, option, shown);
        passing[i] = HoldsEveryWord(words, option.Name, shown);
    }
    return passing;
}

}  // namespace sb
