#pragma once
#include <cstdint>
#include <string>

namespace sb {

// A whole number as decimal text with a blank in the place of the sign when
// it is 0 or more: " 1024", "-3". Status texts, messages and the count of
// records put their numbers so.
inline std::string SignText(int64_t number) {
    return number < 0 ? std::to_string(number) : " " + std::to_string(number);
}

}  // namespace sb
