#pragma once
#include <cstdint>
#include <string>

namespace sb {

// Reads a whole file into bytes; the result is the number of bytes, 0 for a
// missing, unreadable or empty file, a folder, a device and a file of 2 GiB or
// more. When the read fails halfway, the result is still the file's length
// and bytes hold what was read. Throws std::bad_alloc for a file that does
// not fit in memory, and nothing else.
int32_t ReadBinaryFile(const std::string& path, std::string& bytes);

}  // namespace sb
