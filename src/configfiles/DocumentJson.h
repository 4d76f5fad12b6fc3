#pragma once
#include <string>

#include "configfiles/JsonBytes.h"

// The JSON of a configuration document, parsed under bounds that any text
// up to the size limit meets in time and memory that grow with its length
// alone: no NUL byte, no nesting deeper than the document's own, no member
// given twice. Only what the reader takes is kept: the document's members
// but the options, and the module's identity; any other object or array
// comes out empty. Failures are ConfigFileError naming source.
namespace sb {

Json ParseDocumentJson(const std::string& text, const std::string& source);

}  // namespace sb
