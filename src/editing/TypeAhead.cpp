#include "editing/TypeAhead.h"

#include "config/Latin1Text.h"

namespace sb {
namespace {

bool BeginsWith(const std::string& name, const std::string& typed) {
    if (name.size() < typed.size()) return false;
    for (size_t i = 0; i < typed.size(); ++i)
        if (Latin1Lower(name[i]) != Latin1Lower(typed[i])) return false;
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
