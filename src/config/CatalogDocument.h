#pragma once
#include <pugixml.hpp>
#include <span>
#include <string>

namespace sb {

// A catalog document, parsed the one way every catalog is read: no document
// type processing (a DOCTYPE is skipped, so no entity of it is ever declared,
// expanded or fetched), white space between elements dropped, the bytes read
// as Latin-1. Every text comes back one byte a character, as the module sent
// it; a character reference beyond U+00FF reads as "?".
class CatalogDocument {
public:
    // False when the text is not well-formed XML; Reason() says why.
    bool LoadText(const std::string& text);
    // The same for a file; a file that can't be read fails with its reason.
    bool LoadFile(const std::string& path);

    // The parser's reason for the last failed load, with the place of the
    // fault. Empty when the load failed for want of memory.
    const std::string& Reason() const { return reason_; }

    pugi::xml_node Top() const { return document_; }

    // The whole document as text, without indentation.
    std::string Xml() const;

private:
    pugi::xml_document document_;
    std::string reason_;
};

// The attribute's text, empty when the attribute is absent.
std::string AttributeText(pugi::xml_node node, const char* name);
bool HasAttribute(pugi::xml_node node, const char* name);

// The text of all text and CDATA below the node, in document order, without
// surrounding white space.
std::string ElementText(pugi::xml_node node);

// Visits, in document order, every element reached from `from` along the
// element names of `path` (the path /CFG/PDF/C is {"CFG", "PDF", "C"}).
// visit answers whether to go on; the result is false when it stopped.
template <class Visit>
bool ForEachElement(pugi::xml_node from, std::span<const char* const> path, Visit&& visit) {
    if (path.empty()) return visit(from);
    for (pugi::xml_node child : from.children(path.front()))
        if (!ForEachElement(child, path.subspan(1), visit)) return false;
    return true;
}

// The first element along the path, or an empty node.
pugi::xml_node FirstElement(pugi::xml_node from, std::span<const char* const> path);

}  // namespace sb
