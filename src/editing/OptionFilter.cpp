#include "editing/OptionFilter.h"

#include "config/ConfigTool.h"
#include "config/Latin1Text.h"

namespace sb {
namespace {

std::string FoldedText(const std::string& text) {
    std::string folded(text);
    for (char& c : folded) c = Latin1Lower(c);
    return folded;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

}  // namespace

std::vector<std::string> SearchWords(const std::string& search) {
    std::vector<std::string> words;
    std::string word;
    for (const char c : search + ' ') {
        if (!IsBlank(c)) {
            word += Latin1Lower(c);
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
