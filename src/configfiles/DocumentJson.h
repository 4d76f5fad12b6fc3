#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "configfiles/JsonBytes.h"

// The JSON of a configuration document, parsed under bounds that any text
// up to the size limit meets in time and memory that grow with its length
// alone: no NUL byte, no nesting deeper than the document's own, no member
// given twice. Only what the reader takes is kept: the document's members
// but the options, and the module's identity; any other object or array
// comes out empty. Failures are ConfigFileError naming source.
namespace sb {

Json ParseDocumentJson(const std::string& text, const std::string& source);

// What a reader keeps of a member: nothing, its place alone (to tell a
// second one) or its value.
enum class Kept { No, Place, Value };

// The shape of a JSON document that a reader takes: how deep it may nest,
// and which members it keeps, asked with the names of the members that
// lead to their object (none for the document itself). A kept object keeps
// what the shape says of its members; arrays keep no elements.
struct JsonShape {
    size_t DeepestNesting = 1;
    std::function<Kept(const std::vector<std::string>& within, const std::string& name)> Keeps;
};

// ParseDocumentJson for documents of another shape, with the same bounds
// and the same failures.
Json ParseBoundedJson(const std::string& text, const std::string& source, const JsonShape& shape);

}  // namespace sb
