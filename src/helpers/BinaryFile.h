#pragma once
#include <cstdint>
#include <string>

namespace sb {

// Reads a whole file into bytes; the result is the number of bytes, 0 for a
// missing, unreadable or empty file.
int32_t ReadBinaryFile(const std::string& path, std::string& bytes);

}  // namespace sb
