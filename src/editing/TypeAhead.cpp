#include "editing/TypeAhead.h"

namespace sb {
namespace {

// Latin-1 letters in lower case: A-Z and the accented capitals, but for the
// multiplication sign between them.
unsigned char Lower(char c) {
    const auto byte = static_cast<unsigned char>(c);
    const bool capital = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
    return capital ? static_cast<unsigned char>(byte + 0x20) : byte;
}

bool BeginsWith(const std::string& name, const std::string& typed) {
    if (name.size() < typed.size()) return false;
    for (size_t i = 0; i < typed.size(); ++i)
        if (Lower(name[i]) != Lower(typed[i])) return false;
    return true;
}

}  // namespace

bool TypeAhead::Typing(int64_t atMs) const { return !typed_.empty() && atMs - lastMs_ <= pauseMs_; }

void TypeAhead::Type(const std::string& text, int64_t atMs) {
    fresh_ = !Typing(atMs);
    typed_ = fresh_ ? text : typed_ + text;
    lastMs_ = atMs;
}

int TypeAhead::Find(const std::vector<std::string>& names, int current) const {
    const int count = static_cast<int>(names.size());
    if (count == 0 || typed_.empty()) return -1;
    const int start = current < 0 ? 0 : (fresh_ ? current + 1 : current);
    for (int n = 0; n < count; ++n) {
        const int i = (start + n) % count;
        if (BeginsWith(names[static_cast<size_t>(i)], typed_)) return i;
    }
    return -1;
}

}  // namespace sb
