#pragma once
#include <cstdlib>
#include <string>

#include "../helpers/TempFolder.h"

namespace sb::test {

// A file of the project's sources, such as "tests/editing/test-catalog.xml".
inline std::string SourceFile(const std::string& path) { return std::string(std::getenv("SB_SOURCE_DIR")) + "/" + path; }

// The text of test-catalog.xml, the small catalog of the tests of the editing.
inline const std::string& TestCatalog() {
    static const std::string text = TempFolder::Read(SourceFile("tests/editing/test-catalog.xml"));
    return text;
}

// The image of "Module" as hex text.
inline constexpr const char* kModuleImage = "000000000F21415A";

}  // namespace sb::test
