#include "production/LogReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <nlohmann/json.hpp>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace sb {
namespace {

using nlohmann::json;

constexpr size_t kChunk = 1 << 20;
// Longer than any line a station writes (its texts are bounded); a longer
// one is skipped without being held.
constexpr size_t kLongestLine = 1 << 20;

// Takes the fields of the log line's object as the parser meets them,
// without building the document: a gigabyte of logs is read in seconds.
class EntryFields final : public nlohmann::json_sax<json> {
public:
    explicit EntryFields(LogEntry& entry) : entry_(entry) {}
    std::string why;

    bool null() override { return Scalar(); }
    bool boolean(bool) override { return Scalar(); }
    bool number_integer(number_integer_t value) override { return Number(value); }
    bool number_unsigned(number_unsigned_t value) override {
        return Number(static_cast<number_integer_t>(std::min<number_unsigned_t>(value, INT32_MAX)));
    }
    bool number_float(number_float_t, const string_t&) override { return Scalar(); }
    bool string(string_t& value) override {
        if (depth_ == 1 && field_) *field_ = std::move(value);
        return Scalar();
    }
    bool binary(binary_t&) override { return Scalar(); }
    bool start_object(std::size_t) override { return Open(); }
    bool end_object() override { return Close(); }
    bool start_array(std::size_t) override { return depth_ == 0 ? Fault("no JSON object") : Open(); }
    bool end_array() override { return Close(); }
    bool key(string_t& name) override {
        Select(name);
        return true;
    }
    bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
        return Fault("not JSON (at byte " + std::to_string(position) + ")");
    }

private:
    void Select(const std::string& name) {
        // Texts of known length: most keys differ from each in their length.
        static constexpr std::pair<std::string_view, std::string LogEntry::*> kTexts[] = {
            {"time", &LogEntry::Time},
            {"station", &LogEntry::Station},
            {"run_id", &LogEntry::RunId},
            {"port", &LogEntry::Port},
            {"usb_serial", &LogEntry::UsbSerial},
            {"SN", &LogEntry::SN},
            {"firmware_sha256", &LogEntry::FirmwareSha256},
            {"configuration_sha256", &LogEntry::ConfigurationSha256},
            {"recipe_sha256", &LogEntry::RecipeSha256},
            {"step", &LogEntry::Step},
            {"result", &LogEntry::Result},
            {"detail", &LogEntry::Detail},
        };
        field_ = nullptr;
        attempt_ = name == "attempt";
        for (const auto& [key, member] : kTexts)
            if (key == name) {
                field_ = &(entry_.*member);
                return;
            }
    }
    // A field of another type than text is taken as absent, as null is.
    bool Scalar() { return depth_ == 0 ? Fault("no JSON object") : true; }
    bool Number(number_integer_t value) {
        if (depth_ == 1 && attempt_) entry_.Attempt = static_cast<int>(std::clamp<number_integer_t>(value, 0, INT32_MAX));
        return Scalar();
    }
    bool Open() {
        ++depth_;
        return true;
    }
    bool Close() {
        --depth_;
        return true;
    }
    bool Fault(std::string text) {
        why = std::move(text);
        return false;
    }

    LogEntry& entry_;
    int depth_ = 0;
    std::string* field_ = nullptr;
    bool attempt_ = false;
};

class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ > STDIN_FILENO) ::close(fd_);
    }
    int Get() const { return fd_; }

private:
    int fd_;
};

}  // namespace

std::optional<LogEntry> ParseLogLine(std::string_view text, std::string& why) {
    LogEntry entry;
    EntryFields fields(entry);
    if (!json::sax_parse(text.begin(), text.end(), &fields)) {
        why = fields.why.empty() ? "not JSON" : fields.why;
        return std::nullopt;
    }
    if (entry.Time.empty() || entry.Result.empty()) {
        why = entry.Time.empty() ? "no \"time\"" : "no \"result\"";
        return std::nullopt;
    }
    return entry;
}

bool ReadLog(const std::string& path, const LogHooks& hooks) {
    const auto problem = [&](size_t number, std::string why) {
        if (hooks.Problem) hooks.Problem({path, number, std::move(why)});
    };
    const FileDescriptor file(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.Get() < 0) {
        problem(0, std::strerror(errno));
        return false;
    }
    std::vector<char> chunk(kChunk);
    std::string partial;   // a line cut by the end of a chunk
    bool tooLong = false;  // the line in hand is skipped up to its end
    size_t number = 0;
    const auto take = [&](std::string_view line) {
        ++number;
        if (tooLong) {
            tooLong = false;
            return problem(number, "longer than " + std::to_string(kLongestLine) + " bytes");
        }
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.find_first_not_of(" \t") == std::string_view::npos) return;
        if (hooks.Wanted && !hooks.Wanted(line)) return;
        std::string why;
        if (auto entry = ParseLogLine(line, why)) {
            if (hooks.Entry) hooks.Entry(*entry);
        } else {
            problem(number, why);
        }
    };
    // The part of a line that a chunk ends in, as long as the line may grow.
    const auto keep = [&](std::string_view piece) {
        if (tooLong || partial.size() + piece.size() > kLongestLine) {
            tooLong = true;
            partial.clear();
            return;
        }
        partial.append(piece);
    };
    for (;;) {
        const ssize_t got = ::read(file.Get(), chunk.data(), chunk.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) {
            problem(number + 1, std::strerror(errno));
            return false;
        }
        if (got == 0) break;
        std::string_view rest(chunk.data(), static_cast<size_t>(got));
        for (size_t end; (end = rest.find('\n')) != std::string_view::npos; rest.remove_prefix(end + 1)) {
            if (partial.empty() && !tooLong) {
                take(rest.substr(0, end));
            } else {
                keep(rest.substr(0, end));
                take(partial);
                partial.clear();
            }
        }
        keep(rest);
    }
    if (!partial.empty() || tooLong) take(partial);
    return true;
}

bool ReadLogs(const std::vector<std::string>& paths, unsigned workers,
              const std::function<LogHooks(unsigned worker)>& hooksOf) {
    workers = std::max(1u, std::min<unsigned>(workers, static_cast<unsigned>(paths.size())));
    std::atomic<size_t> next{0};
    std::atomic<bool> allRead{true};
    std::mutex telling;
    std::exception_ptr failure;
    const auto work = [&](unsigned worker) {
        try {
            LogHooks hooks = hooksOf(worker);
            if (workers > 1 && hooks.Problem)
                hooks.Problem = [&telling, tell = hooks.Problem](const LogProblem& p) {
                    const std::lock_guard lock(telling);
                    tell(p);
                };
            for (size_t i; (i = next++) < paths.size();)
                if (!ReadLog(paths[i], hooks)) allRead = false;
        } catch (...) {
            const std::lock_guard lock(telling);
            if (!failure) failure = std::current_exception();
            next = paths.size();
        }
    };
    if (workers == 1) {
        work(0);
    } else {
        std::vector<std::jthread> threads;
        for (unsigned worker = 0; worker < workers; ++worker) threads.emplace_back(work, worker);
    }
    if (failure) std::rethrow_exception(failure);
    return allRead;
}

}  // namespace sb
