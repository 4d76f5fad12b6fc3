#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace sb {

// Type-ahead in the option tree. Keys typed in quick succession make one
// name; a pause longer than the interval starts a new one. The option found
// is the next whose name begins with what was typed, in either case (names
// are Latin-1). Time stamps are the key events' own, in milliseconds.
class TypeAhead {
public:
    explicit TypeAhead(int64_t pauseMs) : pauseMs_(pauseMs) {}

    void Type(const std::string& text, int64_t atMs);
    // Whether a name is being typed at atMs: a blank then belongs to it.
    bool Typing(int64_t atMs) const;
    void Reset() { typed_.clear(); }

    // The index into names to go to from current (-1 for none). A new name
    // looks beyond the current option, so that typing its first letter again
    // steps through the options of that letter; a name typed on looks from
    // the current option on. Both wrap around; -1 when no name begins so.
    int Find(const std::vector<std::string>& names, int current) const;

private:
    int64_t pauseMs_;
    std::string typed_;
    int64_t lastMs_ = 0;
    bool fresh_ = true;
};

}  // namespace sb
