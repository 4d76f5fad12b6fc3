#include "configfiles/DocumentJson.h"

#include <algorithm>
#include <vector>

#include "configfiles/ConfigFields.h"
#include "configfiles/ConfigFileError.h"
#include "helpers/ShortText.h"

namespace sb {
namespace {

// The document, its module and its options, one option: a text nested any
// deeper is no configuration document, and refusing it at once keeps the
// parser from building a level for every bracket.
constexpr size_t kDeepestNesting = 3;

constexpr const char* kDocumentMembers[] = {fields::kFormat, fields::kVersion, fields::kSavedAt,
                                            fields::kProgram, fields::kModule,  fields::kId,
                                            fields::kImage,  fields::kOptions, fields::kCatalog};

bool IsDocumentMember(const std::string& name) {
    return std::find(std::begin(kDocumentMembers), std::end(kDocumentMembers), name) != std::end(kDocumentMembers);
}

bool IsModuleField(const std::string& name) {
    return std::any_of(fields::kModuleFields.begin(), fields::kModuleFields.end(),
                       [&](const auto& field) { return name == field.first; });
}

// nlohmann's SAX events, kept where the reader takes them. slot_ is where
// the next value goes, or null when it is dropped.
class DocumentSax {
public:
    DocumentSax(size_t length, const std::string& source) : length_(length), source_(source) {}
    Json TakeDocument() { return std::move(document_); }

    bool null() { return Put(nullptr); }
    bool boolean(bool value) { return Put(value); }
    bool number_integer(Json::number_integer_t value) { return Put(value); }
    bool number_unsigned(Json::number_unsigned_t value) { return Put(value); }
    bool number_float(Json::number_float_t value, const std::string&) { return Put(value); }
    bool string(std::string& value) { return Put(std::move(value)); }
    bool binary(Json::binary_t&) { return Put(nullptr); }  // no JSON text holds one
    bool start_object(size_t) { return Open(Json::object()); }
    bool start_array(size_t) { return Open(Json::array()); }
    bool end_object() { return Close(); }
    bool end_array() { return Close(); }
    bool key(std::string& name);
    [[noreturn]] bool parse_error(size_t position, const std::string& token, const nlohmann::detail::exception& e);

private:
    bool Put(Json value) {
        if (slot_) *slot_ = std::move(value);
        slot_ = nullptr;
        return true;
    }
    bool Open(Json container);
    bool Close() {
        open_.pop_back();
        slot_ = nullptr;
        return true;
    }

    size_t length_;
    const std::string& source_;
    Json document_;
    Json* slot_ = &document_;
    std::vector<Json*> open_;  // the containers around the next value; null for one whose content is dropped
    std::string member_;       // the document's member that is open
};

// Only the document and its module keep their content.
bool DocumentSax::Open(Json container) {
    if (open_.size() == kDeepestNesting)
        throw ConfigFileError(ConfigFault::NotJson, source_,
                              "not a JSON document this program reads: it nests values more than " +
                                  std::to_string(kDeepestNesting) + " levels deep");
    const bool keeps = container.is_object() && (open_.empty() || (open_.size() == 1 && member_ == fields::kModule));
    Json* opened = slot_;
    Put(std::move(container));
    open_.push_back(keeps ? opened : nullptr);
    return true;
}

bool DocumentSax::key(std::string& name) {
    Json* object = open_.back();
    const bool inDocument = open_.size() == 1;
    if (inDocument) member_ = name;
    slot_ = nullptr;
    if (object == nullptr || !(inDocument ? IsDocumentMember(name) : IsModuleField(name))) return true;
    if (object->contains(name)) {
        const std::string field = inDocument ? name : std::string(fields::kModule) + "." + name;
        throw ConfigFileError(ConfigFault::BadField, source_, "the field \"" + field + "\" is given twice");
    }
    // The options are for people: their place is kept, to tell a second
    // one, but not their content.
    Json& value = (*object)[name];
    if (name != fields::kOptions) slot_ = &value;
    return true;
}

bool DocumentSax::parse_error(size_t position, const std::string& token, const nlohmann::detail::exception& e) {
    // The parser counts the end of the input as one more character read.
    if (position > length_)
        throw ConfigFileError(ConfigFault::CutShort, source_, "the file is cut short: it ends inside the document");
    if (dynamic_cast<const Json::out_of_range*>(&e) != nullptr)
        throw ConfigFileError(ConfigFault::NotJson, source_,
                              "not a JSON document: the number " + ShortText(token) + " is too large");
    // The parser's words without their "[json.exception...] " tag, and
    // with the token they quote cut short.
    std::string words = e.what();
    if (const size_t tag = words.find("] "); tag != std::string::npos) words.erase(0, tag + 2);
    const std::string quoted = "last read: '" + token + "'";
    if (const size_t at = words.find(quoted); at != std::string::npos)
        words.replace(at, quoted.size(), "last read: '" + ShortText(token) + "'");
    throw ConfigFileError(ConfigFault::NotJson, source_, "not a JSON document: " + words);
}

}  // namespace

Json ParseDocumentJson(const std::string& text, const std::string& source) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        throw ConfigFileError(ConfigFault::NotJson, source, "the file is empty");
    // The parser would take a NUL byte for the end of the text.
    if (const size_t nul = text.find('\0'); nul != std::string::npos)
        throw ConfigFileError(ConfigFault::NotJson, source,
                              "not a JSON document: a NUL byte at byte " + std::to_string(nul + 1));
    DocumentSax sax(text.size(), source);
    Json::sax_parse(text, &sax);
    return sax.TakeDocument();
}

}  // namespace sb
