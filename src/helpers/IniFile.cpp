#include "helpers/IniFile.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "helpers/WholeFile.h"

namespace sb {
namespace {

// Tells a missing key from a present one.
constexpr std::string_view kNothingFound = "NothingFound";
// The classic read buffer holds 65,536 characters, its end mark included.
constexpr size_t kLongestValue = 65535;
// An INI file is small; anything near this is no INI file of ours.
constexpr int64_t kLargestFile = 64 << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view TrimProfileBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

char LowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// Section and key names match without regard to case or surrounding blanks.
bool SameName(std::string_view a, std::string_view b) {
    a = TrimProfileBlanks(a);
    b = TrimProfileBlanks(b);
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
    return true;
}

// What a reader gets of a stored value: no blanks around it, one pair of
// quotes (double or single) taken off, and no more than the buffer holds.
std::string ValueAsRead(std::string_view stored) {
    std::string_view value = TrimProfileBlanks(stored);
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        value = value.substr(1, value.size() - 2);
    return std::string(value.substr(0, kLongestValue));
}

enum class LineKind { Section, Key, Other };

struct IniLine {
    size_t contentBegin;  // behind a byte order mark on the first line
    size_t contentEnd;    // before the line break (LF or CR LF)
    size_t end;           // behind the line break
    LineKind kind;
    std::string_view name;   // of the section or the key
    std::string_view value;  // the key's stored value, as it stands
};

void Classify(IniLine& line, std::string_view content) {
    const std::string_view text = TrimProfileBlanks(content);
    line.kind = LineKind::Other;
    if (text.empty() || text.front() == ';' || text.front() == '#') return;
    if (text.front() == '[') {
        line.kind = LineKind::Section;
        line.name = TrimProfileBlanks(text.substr(1, text.find(']') - 1));
        return;
    }
    const auto equals = text.find('=');
    if (equals == std::string_view::npos) return;
    line.kind = LineKind::Key;
    line.name = TrimProfileBlanks(text.substr(0, equals));
    line.value = text.substr(equals + 1);
}

// The file's text with its lines. Lines that no edit touches keep every
// byte, their comments and line breaks included.
class IniDocument {
public:
    explicit IniDocument(std::string text) : text_(std::move(text)) {
        Split();
        // New lines follow the file's own line breaks; a new file gets CR LF,
        // which every editor on every platform reads.
        const auto lf = text_.find('\n');
        lineBreak_ = (lf == std::string::npos || (lf > 0 && text_[lf - 1] == '\r')) ? "\r\n" : "\n";
    }

    const std::string& Text() const { return text_; }

    std::optional<std::string_view> Find(std::string_view section, std::string_view key) const {
        const auto range = FirstSection(section);
        if (!range) return std::nullopt;
        for (size_t i = range->first + 1; i < range->second; ++i)
            if (IsKey(i, key)) return lines_[i].value;
        return std::nullopt;
    }

    void Set(std::string_view section, std::string_view key, std::string_view value) {
        const auto range = FirstSection(section);
        if (!range) {
            std::string added;
            if (!text_.empty() && text_.back() != '\n') added += lineBreak_;
            added.append("[").append(section).append("]").append(lineBreak_);
            added.append(key).append("=").append(value).append(lineBreak_);
            Edit(text_.size(), text_.size(), added);
            return;
        }
        for (size_t i = range->first + 1; i < range->second; ++i) {
            if (!IsKey(i, key)) continue;
            const IniLine& line = lines_[i];
            std::string rewritten(line.name);
            rewritten.append("=").append(value);
            Edit(line.contentBegin, line.contentEnd, rewritten);
            return;
        }
        // A new key goes behind the last line of the section that is not
        // blank, so that the blank line before the next section stays there.
        size_t last = range->first;
        for (size_t i = range->first + 1; i < range->second; ++i)
            if (!TrimProfileBlanks(Content(lines_[i])).empty()) last = i;
        const IniLine& line = lines_[last];
        std::string added;
        if (line.end == line.contentEnd) added += lineBreak_;  // the file's last line had no line break
        added.append(key).append("=").append(value).append(lineBreak_);
        Edit(line.end, line.end, added);
    }

    void DeleteKey(std::string_view section, std::string_view key) {
        const auto range = FirstSection(section);
        if (!range) return;
        for (size_t i = range->second; i-- > range->first + 1;)
            if (IsKey(i, key)) Erase(i, i + 1);
    }

    // Every section of that name goes, so that none of its keys can be read
    // afterwards.
    void DeleteSection(std::string_view section) {
        std::vector<std::pair<size_t, size_t>> ranges;
        for (size_t i = 0; i < lines_.size(); ++i)
            if (IsSection(i, section)) ranges.push_back({i, SectionEnd(i)});
        for (auto it = ranges.rbegin(); it != ranges.rend(); ++it) Erase(it->first, it->second);
    }

private:
    void Split() {
        lines_.clear();
        size_t begin = text_.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0 ? kByteOrderMark.size() : 0;
        while (begin < text_.size()) {
            const auto lf = text_.find('\n', begin);
            IniLine line{};
            line.contentBegin = begin;
            line.end = lf == std::string::npos ? text_.size() : lf + 1;
            line.contentEnd = lf == std::string::npos ? text_.size() : lf;
            if (line.contentEnd > begin && text_[line.contentEnd - 1] == '\r') --line.contentEnd;
            Classify(line, Content(line));
            lines_.push_back(line);
            begin = line.end;
        }
    }

    std::string_view Content(const IniLine& line) const {
        return std::string_view(text_).substr(line.contentBegin, line.contentEnd - line.contentBegin);
    }

    bool IsSection(size_t i, std::string_view section) const {
        return lines_[i].kind == LineKind::Section && SameName(lines_[i].name, section);
    }
    bool IsKey(size_t i, std::string_view key) const {
        return lines_[i].kind == LineKind::Key && SameName(lines_[i].name, key);
    }

    size_t SectionEnd(size_t header) const {
        size_t end = header + 1;
        while (end < lines_.size() && lines_[end].kind != LineKind::Section) ++end;
        return end;
    }

    // The header line and the line behind the section's last line.
    std::optional<std::pair<size_t, size_t>> FirstSection(std::string_view section) const {
        for (size_t i = 0; i < lines_.size(); ++i)
            if (IsSection(i, section)) return std::make_pair(i, SectionEnd(i));
        return std::nullopt;
    }

    void Erase(size_t firstLine, size_t endLine) {
        Edit(lines_[firstLine].contentBegin, lines_[endLine - 1].end, {});
    }

    void Edit(size_t from, size_t to, std::string_view replacement) {
        text_.replace(from, to - from, replacement);
        Split();
    }

    std::string text_;
    std::vector<IniLine> lines_;
    std::string lineBreak_;
};

bool HasLineBreak(std::string_view text) { return text.find_first_of("\r\n") != std::string_view::npos; }

bool Refused(const IniEntry& entry) {
    // Names and values that would read back as something else, or break the
    // file's lines, are refused rather than written.
    return TrimProfileBlanks(entry.section).empty() || entry.section.find(']') != std::string::npos ||
           entry.key.find('=') != std::string::npos || HasLineBreak(entry.section) || HasLineBreak(entry.key) ||
           HasLineBreak(entry.value);
}

void Apply(IniDocument& document, const IniEntry& entry) {
    if (!entry.value.empty())
        document.Set(entry.section, entry.key, entry.value);
    else if (!entry.key.empty())
        document.DeleteKey(entry.section, entry.key);
    else
        document.DeleteSection(entry.section);
}

}  // namespace

bool IniWriteValues(const std::vector<IniEntry>& entries, const std::string& path, std::error_code* failure) {
    const auto fail = [failure](std::error_code why) {
        if (failure) *failure = why;
        return false;
    };
    for (const IniEntry& entry : entries)
        if (Refused(entry)) return fail(std::make_error_code(std::errc::invalid_argument));

    std::string old;
    std::error_code unread;
    const WholeFileRead read = ReadWholeFile(path, old, kLargestFile, &unread);
    // A file that is there but cannot be read must not be overwritten.
    if (read != WholeFileRead::Missing && read != WholeFileRead::Complete) return fail(unread);

    IniDocument document(old);
    for (const IniEntry& entry : entries) Apply(document, entry);

    if (failure) failure->clear();
    // Nothing changed, or only deletions from a missing file: nothing to write.
    if (document.Text() == old && (read == WholeFileRead::Complete || old.empty())) return true;
    return ReplaceFileAtomically(path, document.Text(), failure);
}

bool IniWriteValue(const std::string& section, const std::string& key, const std::string& value,
                   const std::string& path) {
    return IniWriteValues({IniEntry{section, key, value}}, path);
}

std::string IniReadValue(const std::string& section, const std::string& key, const std::string& defaultValue,
                         const std::string& path) {
    std::string found(kNothingFound);
    std::string text;
    if (!key.empty() && ReadWholeFile(path, text, kLargestFile) == WholeFileRead::Complete) {
        const IniDocument document(std::move(text));
        if (const auto stored = document.Find(section, key)) found = ValueAsRead(*stored);
    }
    if (found.empty()) return {};
    if (found == kNothingFound) return defaultValue;
    return found;
}

}  // namespace sb
