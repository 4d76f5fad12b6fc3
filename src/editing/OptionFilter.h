#pragma once
#include <string>
#include <vector>

#include "config/Types.h"

// The filter of the option tree: the options whose name or shown value holds
// every word of a search, case-insensitive and in any order. It works on the
// catalog and the image, never on the tree's texts, so a caller keeps what
// the tree shows and hides only the options that fail.
namespace sb {

// The words of a search, split at blanks and folded to lower case; no words
// for a blank search.
std::vector<std::string> SearchWords(const std::string& search);

// Each word stands in the name or in the shown value (Latin-1, either case).
bool HoldsEveryWord(const std::vector<std::string>& words, const std::string& name, const std::string& shown);

// One flag a catalog option, in catalog order: whether it passes. Every
// option passes a search without words.
std::vector<bool> FilterOptions(const DeviceInfo& device, const std::string& image,
                                const std::vector<std::string>& words);

}  // namespace sb
