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

// nlohmann's SAX events, kept where the shape keeps them. slot_ is where
// the next value goes, or null when it is dropped.
class DocumentSax {
public:
    DocumentSax(size_t length, const std::string& source, const JsonShape& shape)
        : length_(length), source_(source), shape_(shape) {}
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
        within_.pop_back();
        slot_ = nullptr;
        return true;
    }

    size_t length_;
    const std::string& source_;
    const JsonShape& shape_;
    Json document_;
    Json* slot_ = &document_;
    std::vector<Json*> open_;  // the containers around the next value; null for one whose content is dropped
    // The member names that lead to the open containers; the document's own
    // is not among them.
    std::vector<std::string> within_;
    std::string member_;  // the last member name read
};

// An object keeps its content where it was itself kept.
bool DocumentSax::Open(Json container) {
    if (open_.size() == shape_.DeepestNesting)
        throw ConfigFileError(ConfigFault::NotJson, source_,
                              "not a JSON document this program reads: it nests values more than " +
                                  std::to_string(shape_.DeepestNesting) + " levels deep");
    const bool keeps = container.is_object() && slot_ != nullptr;
    Json* opened = slot_;
    Put(std::move(container));
    if (!open_.empty()) within_.push_back(member_);
    else within_.emplace_back();
    open_.push_back(keeps ? opened : nullptr);
    return true;
}

bool DocumentSax::key(std::string& name) {
    Json* object = open_.back();
    member_ = name;
    slot_ = nullptr;
    if (object == nullptr) return true;
    const std::vector<std::string> within(within_.begin() + 1, within_.end());
    const Kept kept = shape_.Keeps(within, name);
    if (kept == Kept::No) return true;
    if (object->contains(name)) {
        std::string field;
        for (const std::string& outer : within) field += outer + ".";
        throw ConfigFileError(ConfigFault::BadField, source_, "the field \"" + field + name + "\" is given twice");
    }
    Json& value = (*object)[name];
    if (kept == Kept::Value) slot_ = &value;
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

// The document and its module keep their content. The options are for
// people: their place is kept, to tell a second one, but not their content.
Json ParseDocumentJson(const std::string& text, const std::string& source) {
    static const JsonShape shape{kDeepestNesting, [](const std::vector<std::string>& within, const std::string& name) {
        if (within.empty())
            return !IsDocumentMember(name) ? Kept::No : name == fields::kOptions ? Kept::Place : Kept::Value;
        return within.size() == 1 && within[0] == fields::kModule && IsModuleField(name) ? Kept::Value : Kept::No;
    }};
    return ParseBoundedJson(text, source, shape);
}

Json ParseBoundedJson(const std::string& text, const std::string& source, const JsonShape& shape) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        throw ConfigFileError(ConfigFault::NotJson, source, "the file is empty");
    // The parser would take a NUL byte for the end of the text.
    if (const size_t nul = text.find('\0'); nul != std::string::npos)
        throw ConfigFileError(ConfigFault::NotJson, source,
                              "not a JSON document: a NUL byte at byte " + std::to_string(nul + 1));
    DocumentSax sax(text.size(), source, shape);
    Json::sax_parse(text, &sax);
    return sax.TakeDocument();
}

}  // namespace sb
