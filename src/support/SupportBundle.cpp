#include "support/SupportBundle.h"

#include <archive.h>
#include <archive_entry.h>
#include <sys/utsname.h>

#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

#include "configfiles/ConfigHistory.h"
#include "configfiles/UtcTime.h"
#include "helpers/WholeFile.h"
#include "support/DoctorReport.h"

namespace sb::support {
namespace {

constexpr const char* kFolder = "servicebay-support/";

struct Part {
    std::string File;
    std::string Holds;
    std::optional<std::string> Content;
    std::string Missing;  // why there is no content
    bool Cut = false;
};

Part Bounded(Part part, bool keepEnd) {
    if (part.Content && part.Content->size() > kBundlePartLimit) {
        *part.Content = keepEnd ? part.Content->substr(part.Content->size() - kBundlePartLimit)
                                : part.Content->substr(0, kBundlePartLimit);
        part.Cut = true;
    }
    return part;
}

std::optional<HistoryFile> NewestRead(const std::string& root) {
    std::optional<HistoryFile> newest;
    for (const auto& group : ListHistory(root))
        if (!group.Files.empty() && (!newest || group.Files.front().Stamp > newest->Stamp)) newest = group.Files.front();
    return newest;
}

Part LastConfiguration(const BundleSources& sources) {
    Part part{"last-read.sbconf", "the configuration file of the last read of a module (history)", {}, "", false};
    const auto newest = NewestRead(sources.HistoryRoot);
    if (!newest) return part.Missing = "no read is kept in " + sources.HistoryRoot, part;
    std::string text;
    std::error_code failure;
    if (ReadWholeFile(newest->Path, text, kBundlePartLimit, &failure) != WholeFileRead::Complete)
        return part.Missing = newest->Path + " cannot be read" + (failure ? ": " + failure.message() : ""), part;
    if (!sources.WithVin) {
        // The VIN names a vehicle: out, unless the user asks for it.
        nlohmann::ordered_json document = nlohmann::ordered_json::parse(text, nullptr, false);
        if (document.is_discarded() || !document.contains("module") || !document["module"].is_object())
            return part.Missing = newest->Path + " is no configuration file whose VIN could be left out", part;
        document["module"]["VIN"] = "";
        text = document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
        part.Holds += ", the VIN left out";
    }
    part.Holds += " (" + newest->Path + ")";
    part.Content = std::move(text);
    return part;
}

std::vector<Part> Parts(const BundleSources& sources) {
    std::string logs;
    for (const auto& path : sources.LogPaths) logs += path + "\n";
    Part trace{"wire-trace.txt", "the recent wire traffic to and from the module", sources.WireTrace,
               sources.WireTraceMissing, false};
    if (trace.Content && !sources.WithVin) {
        *trace.Content = WithoutVin(*trace.Content);
        trace.Holds += ", the answers to GETVIN left out";
    }
    return {
        {"doctor.txt", "the doctor's findings on this machine", FindingsText(sources.Findings), "", false},
        {"doctor.json", "the same findings for scripts", FindingsJson(sources.Findings).dump(2) + "\n", "", false},
        {"versions.txt", "the program's and the system's versions", sources.Versions, "", false},
        Bounded(std::move(trace), true),
        LastConfiguration(sources),
        {"logs.txt", "the paths of the files and folders the program writes", logs, "", false},
    };
}

nlohmann::ordered_json Manifest(const std::vector<Part>& parts) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const auto& part : parts) {
        nlohmann::ordered_json entry = {{"file", part.Content ? kFolder + part.File : ""},
                                        {"holds", part.Holds},
                                        {"collected", part.Content.has_value()}};
        if (!part.Content) entry["reason"] = part.Missing;
        if (part.Cut) entry["cut_to_bytes"] = kBundlePartLimit;
        list.push_back(entry);
    }
    return {{"format", "servicebay-support-bundle"},
            {"version", 1},
            {"created", IsoUtcText(std::chrono::system_clock::now())},
            {"parts", list}};
}

class Archive {
public:
    // The archive is made in memory (its parts are bounded) and written to
    // path in one step by the program's one atomic writer.
    explicit Archive(const std::string& path) : path_(path) {
        if (!archive_ || ::archive_write_add_filter_gzip(archive_.get()) != ARCHIVE_OK ||
            ::archive_write_set_format_pax_restricted(archive_.get()) != ARCHIVE_OK ||
            ::archive_write_set_bytes_in_last_block(archive_.get(), 1) != ARCHIVE_OK ||
            ::archive_write_open2(archive_.get(), &bytes_, nullptr, Append, nullptr, nullptr) != ARCHIVE_OK)
            Fail();
    }
    void Add(const std::string& name, const std::string& content) {
        archive_entry* entry = ::archive_entry_new();
        ::archive_entry_set_pathname(entry, (kFolder + name).c_str());
        ::archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
        ::archive_entry_set_filetype(entry, AE_IFREG);
        ::archive_entry_set_perm(entry, 0644);
        ::archive_entry_set_mtime(entry, std::time(nullptr), 0);
        const bool written = ::archive_write_header(archive_.get(), entry) == ARCHIVE_OK &&
                             ::archive_write_data(archive_.get(), content.data(), content.size()) ==
                                 static_cast<la_ssize_t>(content.size());
        ::archive_entry_free(entry);
        if (!written) Fail();
    }
    // The whole archive.
    const std::string& Close() {
        if (::archive_write_close(archive_.get()) != ARCHIVE_OK) Fail();
        return bytes_;
    }

private:
    static la_ssize_t Append(archive*, void* bytes, const void* buffer, size_t length) {
        static_cast<std::string*>(bytes)->append(static_cast<const char*>(buffer), length);
        return static_cast<la_ssize_t>(length);
    }
    [[noreturn]] void Fail() {
        const char* why = archive_ ? ::archive_error_string(archive_.get()) : nullptr;
        throw std::runtime_error(path_ + " cannot be written: " + (why ? why : "out of memory"));
    }
    std::string path_;
    std::string bytes_;
    std::unique_ptr<archive, int (*)(archive*)> archive_{::archive_write_new(), ::archive_write_free};
};

}  // namespace

void WriteSupportBundle(const std::string& path, const BundleSources& sources) {
    const std::vector<Part> parts = Parts(sources);
    Archive archive(path);
    archive.Add("manifest.json", Manifest(parts).dump(2) + "\n");
    for (const auto& part : parts)
        if (part.Content) archive.Add(part.File, *part.Content);
    std::error_code failure;
    if (!ReplaceFileAtomically(path, archive.Close(), &failure))
        throw std::runtime_error(path + " cannot be written: " + failure.message());
}

std::string SystemVersions(const SystemView& system) {
    std::string text;
    utsname name{};
    if (::uname(&name) == 0)
        text += std::string("kernel: ") + name.sysname + " " + name.release + " " + name.version + " " + name.machine + "\n";
    std::istringstream release(system.Read("/etc/os-release").value_or(""));
    for (std::string line; std::getline(release, line);)
        if (line.rfind("PRETTY_NAME=", 0) == 0) text += "system: " + line.substr(12) + "\n";
    return text;
}

std::string WithoutVin(const std::string& trace) {
    std::istringstream lines(trace);
    std::string kept;
    bool answer = false;
    for (std::string line; std::getline(lines, line);) {
        const auto mark = line.find("] ");
        const char direction = mark == std::string::npos || mark + 2 >= line.size() ? ' ' : line[mark + 2];
        if (direction == '>') answer = line.find("|GETVIN\\r|") != std::string::npos;
        if (answer && direction == '<') {
            answer = line.find("> |") == std::string::npos;  // the prompt ends the answer
            line = line.substr(0, mark + 4) + "(left out: the answer to GETVIN)";
        }
        kept += line + "\n";
    }
    return kept;
}

}  // namespace sb::support
