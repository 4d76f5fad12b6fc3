#include "config/CatalogDocument.h"

#include <algorithm>
#include <sstream>

#include "config/Latin1Text.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

// Catalogs are a few kilobytes; a file far beyond that is no catalog.
constexpr int64_t kMaxFileLength = 64 * 1024 * 1024;

// CDATA, character and the five predefined entity references, line ends
// and attribute white space as XML says; no DOCTYPE, no comments, no
// processing instructions, no white-space-only text.
constexpr unsigned kParseOptions = pugi::parse_default;

bool IsXmlBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string TrimXmlBlanks(const std::string& text) {
    size_t first = 0;
    size_t last = text.size();
    while (first < last && IsXmlBlank(text[first])) ++first;
    while (last > first && IsXmlBlank(text[last - 1])) --last;
    return text.substr(first, last - first);
}

// "(line 3, column 12)" for an offset into the parsed text, counting
// characters, not bytes, within the line.
std::string PlaceOf(const std::string& utf8, ptrdiff_t offset) {
    size_t line = 1;
    size_t column = 1;
    const size_t end = std::min(static_cast<size_t>(std::max<ptrdiff_t>(offset, 0)), utf8.size());
    for (size_t i = 0; i < end; ++i) {
        if (utf8[i] == '\n') {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(utf8[i]) & 0xC0) != 0x80) {
            ++column;
        }
    }
    std::ostringstream place;
    place << "(line " << line << ", column " << column << ")";
    return place.str();
}

// pugixml reads several top-level elements without complaint; a document
// has exactly one.
pugi::xml_node SecondTopElement(const pugi::xml_document& document) {
    int elements = 0;
    for (pugi::xml_node node : document.children())
        if (node.type() == pugi::node_element && ++elements == 2) return node;
    return {};
}

class StringWriter final : public pugi::xml_writer {
public:
    std::string text;
    void write(const void* data, size_t size) override { text.append(static_cast<const char*>(data), size); }
};

}  // namespace

bool CatalogDocument::LoadText(const std::string& text) {
    reason_.clear();
    // A byte order mark of UTF-8 would read as three Latin-1 letters.
    const bool marked = text.compare(0, 3, "\xEF\xBB\xBF") == 0;
    const std::string utf8 = Latin1ToUtf8(marked ? text.substr(3) : text);
    const pugi::xml_parse_result result =
        document_.load_buffer(utf8.data(), utf8.size(), kParseOptions, pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) return false;
    if (!result) {
        reason_ = std::string(result.description()) + " " + PlaceOf(utf8, result.offset);
        return false;
    }
    if (const pugi::xml_node second = SecondTopElement(document_)) {
        reason_ = "Only one top level element is allowed " + PlaceOf(utf8, second.offset_debug());
        document_.reset();
        return false;
    }
    return true;
}

bool CatalogDocument::LoadFile(const std::string& path) {
    std::string bytes;
    switch (ReadWholeFile(path, bytes, kMaxFileLength)) {
        case WholeFileRead::Complete:
            return LoadText(bytes);
        case WholeFileRead::Missing:
            reason_ = "File was not found: " + path;
            break;
        case WholeFileRead::NotAFile:
            reason_ = "Not a file: " + path;
            break;
        case WholeFileRead::TooLarge:
            reason_ = "File is too large for a catalog: " + path;
            break;
        case WholeFileRead::CannotOpen:
        case WholeFileRead::Partial:
            reason_ = "Error reading from file: " + path;
            break;
    }
    document_.reset();
    return false;
}

std::string CatalogDocument::Xml() const {
    StringWriter writer;
    document_.save(writer, "", pugi::format_raw, pugi::encoding_latin1);
    return writer.text;
}

std::string AttributeText(pugi::xml_node node, const char* name) {
    return Utf8ToLatin1(node.attribute(name).value());
}

bool HasAttribute(pugi::xml_node node, const char* name) { return static_cast<bool>(node.attribute(name)); }

std::string ElementText(pugi::xml_node node) {
    // A walk without recursion: a document may nest as deep as it likes.
    std::string text;
    pugi::xml_node at = node.first_child();
    while (at) {
        if (at.type() == pugi::node_pcdata || at.type() == pugi::node_cdata) text += at.value();
        if (at.first_child()) {
            at = at.first_child();
            continue;
        }
        while (at != node && !at.next_sibling()) at = at.parent();
        if (at == node) break;
        at = at.next_sibling();
    }
    return TrimXmlBlanks(Utf8ToLatin1(text));
}

pugi::xml_node FirstElement(pugi::xml_node from, std::span<const char* const> path) {
    pugi::xml_node found;
    ForEachElement(from, path, [&](pugi::xml_node element) {
        found = element;
        return false;
    });
    return found;
}

}  // namespace sb
