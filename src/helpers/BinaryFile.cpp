#include "helpers/BinaryFile.h"

#include <limits>

#include "helpers/WholeFile.h"

namespace sb {

int32_t ReadBinaryFile(const std::string& path, std::string& bytes) {
    // The count is a 32-bit signed number: a longer file reads as none.
    switch (ReadWholeFile(path, bytes, std::numeric_limits<int32_t>::max())) {
        case WholeFileRead::Complete:
        case WholeFileRead::Partial:  // the length, with what could be read
            return static_cast<int32_t>(bytes.size());
        default:
            return 0;
    }
}

}  // namespace sb
