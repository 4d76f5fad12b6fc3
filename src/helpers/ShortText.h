#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace sb {

// A text from a file or a module, fit for a message: as it stands up to
// limit bytes; a longer one is cut there (never inside a UTF-8 character)
// and followed by "..." and its length, so that no input can make a
// message as long as itself.
inline constexpr size_t kShortTextLimit = 80;
std::string ShortText(std::string_view text, size_t limit = kShortTextLimit);

}  // namespace sb
