#include "production/Recipe.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

#include "configfiles/DocumentJson.h"
#include "helpers/Sha256.h"
#include "helpers/ShortText.h"
#include "helpers/TrimBlanks.h"
#include "helpers/WholeFile.h"

namespace sb {
namespace {

// A recipe names a few files; a megabyte is far beyond any.
constexpr int64_t kLongestRecipe = int64_t{1} << 20;
// The update run refuses firmware files of 2 GiB and more.
constexpr int64_t kLongestFirmware = (int64_t{1} << 31) - 1;
// As for a configuration file; an order of a million serials fits too.
constexpr int64_t kLongestList = int64_t{16} << 20;

// A list of serials names so many faulty lines, and counts the others: a
// file of millions of them must not make millions of messages.
constexpr int kMostLinesNamed = 10;

// The document and the objects of its members: nothing nests deeper.
constexpr size_t kDeepestNesting = 2;

namespace member {
constexpr const char* kFormat = "format";
constexpr const char* kVersion = "version";
constexpr const char* kFirmware = "firmware";
constexpr const char* kConfiguration = "configuration";
constexpr const char* kExpect = "expect";
constexpr const char* kProductionRecord = "production_record";
constexpr const char* kRunAfter = "run_after";
constexpr const char* kFile = "file";
constexpr const char* kSha256 = "sha256";
constexpr const char* kPName = "PName";
constexpr const char* kUsbSerialsFile = "usb_serials_file";
}  // namespace member

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }
std::string Shown(const Json& value) { return ShortText(value.dump(-1, ' ', true)); }

// Collects the problems of one recipe, each naming the file it is about.
class Checker {
public:
    explicit Checker(const std::string& path) {
        check_.Recipe.Path = std::filesystem::absolute(path).lexically_normal().string();
        folder_ = std::filesystem::path(check_.Recipe.Path).parent_path();
    }
    RecipeCheck Run();

private:
    void Refuse(RecipeFault fault, const std::string& source, const std::string& what) {
        check_.Problems.push_back({fault, source + ": " + what});
    }
    void BadField(const std::string& what) { Refuse(RecipeFault::BadField, check_.Recipe.Path, what); }
    std::optional<Json> ReadDocument();
    bool IsThisFormat(const Json& json);
    void TakeMembers(const Json& json);
    const Json* Member(const Json& object, const std::string& name, const std::string& within, bool required);
    void NoOtherMembers(const Json& object, std::initializer_list<const char*> known, const std::string& within);
    std::optional<std::string> Text(const Json& object, const std::string& name, const std::string& within,
                                    bool required);
    std::optional<PinnedFile> Pinned(const Json& json, const std::string& name, bool required);
    void TakeExpect(const Json& json);
    bool Flag(const Json& json, const std::string& name);
    std::optional<std::string> ReadFile(const std::string& path, int64_t limit);
    void CheckFirmware();
    void CheckConfiguration();
    void CheckSerials();
    std::string PathOf(const std::string& file) const { return (folder_ / file).lexically_normal().string(); }

    RecipeCheck check_;
    std::filesystem::path folder_;
};

RecipeCheck Checker::Run() {
    const std::optional<Json> json = ReadDocument();
    if (!json || !IsThisFormat(*json)) return std::move(check_);
    check_.Taken = true;
    TakeMembers(*json);
    if (!check_.Recipe.Firmware.File.empty()) CheckFirmware();
    if (check_.Recipe.Configuration) CheckConfiguration();
    if (check_.Recipe.UsbSerialsFile) CheckSerials();
    return std::move(check_);
}

std::optional<Json> Checker::ReadDocument() {
    const std::optional<std::string> text = ReadFile(check_.Recipe.Path, kLongestRecipe);
    if (!text) {
        check_.Problems.back().Fault = RecipeFault::Unreadable;
        return std::nullopt;
    }
    check_.Recipe.Sha256 = Sha256Hex(*text);
    static const JsonShape shape{kDeepestNesting,
                                 [](const std::vector<std::string>&, const std::string&) { return Kept::Value; }};
    try {
        return ParseBoundedJson(*text, check_.Recipe.Path, shape);
    } catch (const ConfigFileError& failure) {
        // A member given twice is a fault of the recipe's fields; the rest
        // is no JSON this program reads.
        const bool field = failure.Fault() == ConfigFault::BadField;
        check_.Problems.push_back({field ? RecipeFault::BadField : RecipeFault::Unreadable, failure.what()});
        return std::nullopt;
    }
}

// Another format or version says nothing about its members: they are not
// looked at.
bool Checker::IsThisFormat(const Json& json) {
    const auto format = json.is_object() ? json.find(member::kFormat) : json.end();
    if (format == json.end() || !format->is_string()) {
        BadField("not a recipe: it names no format");
        return false;
    }
    if (*format != kRecipeFormat) {
        BadField("not a recipe: its format is " + Shown(*format) + ", not " + Quoted(kRecipeFormat));
        return false;
    }
    const auto version = json.find(member::kVersion);
    if (version == json.end() || *version != kRecipeVersion) {
        BadField(version == json.end() ? "the recipe names no version of its format"
                                       : "the recipe is of version " + Shown(*version) +
                                             "; this program reads version " + std::to_string(kRecipeVersion));
        return false;
    }
    return true;
}

void Checker::TakeMembers(const Json& json) {
    NoOtherMembers(json,
                   {member::kFormat, member::kVersion, member::kFirmware, member::kConfiguration, member::kExpect,
                    member::kProductionRecord, member::kRunAfter},
                   "");
    Recipe& recipe = check_.Recipe;
    if (auto firmware = Pinned(json, member::kFirmware, true)) recipe.Firmware = *firmware;
    recipe.Configuration = Pinned(json, member::kConfiguration, false);
    TakeExpect(json);
    recipe.ProductionRecord = Flag(json, member::kProductionRecord);
    recipe.RunAfter = Flag(json, member::kRunAfter);
}

// within names the object in messages when it is not the document itself.
const Json* Checker::Member(const Json& object, const std::string& name, const std::string& within, bool required) {
    const auto found = object.find(name);
    if (found != object.end()) return &*found;
    if (required) BadField("the field " + Quoted(within.empty() ? name : within + "." + name) + " is missing");
    return nullptr;
}

void Checker::NoOtherMembers(const Json& object, std::initializer_list<const char*> known,
                             const std::string& within) {
    for (const auto& member : object.items()) {
        const std::string& name = member.key();
        if (std::none_of(known.begin(), known.end(), [&](const char* k) { return name == k; }))
            BadField("the field " + Quoted(ShortText(within.empty() ? name : within + "." + name)) +
                     " is not one of a recipe");
    }
}

std::optional<std::string> Checker::Text(const Json& object, const std::string& name, const std::string& within,
                                         bool required) {
    const Json* value = Member(object, name, within, required);
    if (!value) return std::nullopt;
    std::optional<std::string> bytes = BytesOfJson(*value);
    if (!bytes || bytes->empty() || bytes->find('\0') != std::string::npos) {
        BadField("the field " + Quoted(within + "." + name) + " is no text of bytes, or empty: " + Shown(*value));
        return std::nullopt;
    }
    return bytes;
}

std::optional<PinnedFile> Checker::Pinned(const Json& json, const std::string& name, bool required) {
    const Json* object = Member(json, name, "", required);
    if (!object) return std::nullopt;
    if (!object->is_object()) {
        BadField("the field " + Quoted(name) + " is no object with a file and its sha256");
        return std::nullopt;
    }
    NoOtherMembers(*object, {member::kFile, member::kSha256}, name);
    const std::optional<std::string> file = Text(*object, member::kFile, name, true);
    std::optional<std::string> sha256 = Text(*object, member::kSha256, name, true);
    if (sha256) {
        std::transform(sha256->begin(), sha256->end(), sha256->begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (sha256->size() != 64 || sha256->find_first_not_of("0123456789abcdef") != std::string::npos) {
            BadField("the field " + Quoted(name + "." + member::kSha256) + " is no SHA-256 (64 hex digits): " +
                     Quoted(ShortText(*sha256)));
            sha256.reset();
        }
    }
    if (!file || !sha256) return std::nullopt;
    return PinnedFile{PathOf(*file), *sha256};
}

void Checker::TakeExpect(const Json& json) {
    const Json* expect = Member(json, member::kExpect, "", false);
    if (!expect) return;
    if (!expect->is_object()) return BadField("the field " + Quoted(member::kExpect) + " is no object");
    NoOtherMembers(*expect, {member::kPName, member::kUsbSerialsFile}, member::kExpect);
    check_.Recipe.ExpectedPName = Text(*expect, member::kPName, member::kExpect, false);
    if (const auto list = Text(*expect, member::kUsbSerialsFile, member::kExpect, false))
        check_.Recipe.UsbSerialsFile = PathOf(*list);
}

// Both choices are the recipe's to make: neither has a default.
bool Checker::Flag(const Json& json, const std::string& name) {
    const Json* value = Member(json, name, "", true);
    if (value && !value->is_boolean()) BadField("the field " + Quoted(name) + " is neither true nor false");
    return value && value->is_boolean() && value->get<bool>();
}

std::optional<std::string> Checker::ReadFile(const std::string& path, int64_t limit) {
    std::string bytes;
    const char* why = nullptr;
    switch (ReadWholeFile(path, bytes, limit)) {
        case WholeFileRead::Complete: return bytes;
        case WholeFileRead::Missing: why = "there is no such file"; break;
        case WholeFileRead::NotAFile: why = "it is not a normal file"; break;
        case WholeFileRead::CannotOpen: why = "it cannot be opened"; break;
        case WholeFileRead::TooLarge: why = "it is too large"; break;
        case WholeFileRead::Partial: why = "it could not be read to its end"; break;
    }
    Refuse(RecipeFault::FileMissing, path, why);
    return std::nullopt;
}

void Checker::CheckFirmware() {
    const PinnedFile& firmware = check_.Recipe.Firmware;
    const std::optional<std::string> bytes = ReadFile(firmware.File, kLongestFirmware);
    if (!bytes) return;
    if (bytes->empty()) return Refuse(RecipeFault::FileMissing, firmware.File, "the firmware file is empty");
    check_.Recipe.FirmwareSize = static_cast<int64_t>(bytes->size());
    if (const std::string sha256 = Sha256Hex(*bytes); sha256 != firmware.Sha256)
        Refuse(RecipeFault::HashDiffers, firmware.File, "its " + OtherSha256(sha256, firmware.Sha256));
}

void Checker::CheckConfiguration() {
    const PinnedFile& configuration = *check_.Recipe.Configuration;
    const std::optional<std::string> bytes = ReadFile(configuration.File, kLongestList);
    if (!bytes) return;
    if (const std::string sha256 = Sha256Hex(*bytes); sha256 != configuration.Sha256)
        return Refuse(RecipeFault::HashDiffers, configuration.File, "its " + OtherSha256(sha256, configuration.Sha256));
    try {
        check_.Recipe.Config = ReadConfigText(*bytes, configuration.File);
    } catch (const ConfigFileError& failure) {
        check_.Problems.push_back({RecipeFault::FileRefused, failure.what()});
    }
}

void Checker::CheckSerials() {
    const std::string& path = *check_.Recipe.UsbSerialsFile;
    if (const std::optional<std::string> text = ReadFile(path, kLongestList))
        check_.Recipe.UsbSerials = ParseUsbSerials(*text, path, check_.Problems);
}

}  // namespace

RecipeCheck CheckRecipe(const std::string& path) { return Checker(path).Run(); }

std::set<std::string> ParseUsbSerials(const std::string& text, const std::string& source,
                                      std::vector<RecipeProblem>& problems) {
    std::set<std::string> serials;
    std::istringstream lines(text);
    std::string line;
    int faults = 0;
    const auto refuse = [&](int number, const std::string& what) {
        if (++faults <= kMostLinesNamed)
            problems.push_back({RecipeFault::FileRefused, source + ": line " + std::to_string(number) + ": " + what});
    };
    for (int number = 1; std::getline(lines, line); ++number) {
        const std::string serial = TrimBlanks(line);
        if (serial.empty() || serial[0] == '#') continue;
        if (std::any_of(serial.begin(), serial.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }))
            refuse(number, "the serial holds a control character");
        else if (!serials.insert(serial).second)
            refuse(number, "the serial " + ShortText(serial) + " is given twice");
    }
    if (faults > kMostLinesNamed)
        problems.push_back({RecipeFault::FileRefused,
                            source + ": and " + std::to_string(faults - kMostLinesNamed) + " more lines like these"});
    if (serials.empty()) problems.push_back({RecipeFault::FileRefused, source + ": the list holds no serial"});
    return serials;
}

const char* StepName(RecipeStep step) {
    switch (step) {
        case RecipeStep::Boot: return "boot";
        case RecipeStep::Identity: return "identity";
        case RecipeStep::Download: return "download";
        case RecipeStep::Configure: return "configure";
        case RecipeStep::Verify: return "verify";
        case RecipeStep::Record: return "record";
        case RecipeStep::Run: return "run";
    }
    return "";
}

std::optional<RecipeStep> StepOfName(const std::string& name) {
    for (RecipeStep step : {RecipeStep::Boot, RecipeStep::Identity, RecipeStep::Download, RecipeStep::Configure,
                            RecipeStep::Verify, RecipeStep::Record, RecipeStep::Run})
        if (name == StepName(step)) return step;
    return std::nullopt;
}

std::vector<RecipeStep> RecipeSteps(const Recipe& recipe) {
    std::vector<RecipeStep> steps = {RecipeStep::Boot, RecipeStep::Identity, RecipeStep::Download};
    if (recipe.Configuration) steps.insert(steps.end(), {RecipeStep::Configure, RecipeStep::Verify});
    if (recipe.ProductionRecord) steps.push_back(RecipeStep::Record);
    if (recipe.RunAfter) steps.push_back(RecipeStep::Run);
    return steps;
}

namespace {

// A field of the recipe that was refused stands in the plan as "?"; the
// reasons below the plan say why.
std::string OrRefused(const std::string& field) { return field.empty() ? "?" : field; }

std::string StepPlan(const Recipe& recipe, RecipeStep step) {
    switch (step) {
        case RecipeStep::Boot: return "a running module is sent into its boot loader";
        case RecipeStep::Identity: {
            std::string plan = "GETSN is read, and must answer the same at every later step";
            if (recipe.UsbSerialsFile)
                plan += "; the USB serial must be on the list " + *recipe.UsbSerialsFile + " (" +
                        std::to_string(recipe.UsbSerials.size()) + " serials)";
            if (recipe.ExpectedPName) plan += "; GETNAME must answer " + Quoted(ShortText(*recipe.ExpectedPName));
            return plan;
        }
        case RecipeStep::Download:
            return OrRefused(recipe.Firmware.File) + " (" +
                   (recipe.FirmwareSize > 0 ? std::to_string(recipe.FirmwareSize) + " bytes, " : "") + "SHA-256 " +
                   OrRefused(recipe.Firmware.Sha256) + ")";
        case RecipeStep::Configure:
            return OrRefused(recipe.Configuration->File) + " (SHA-256 " + OrRefused(recipe.Configuration->Sha256) +
                   (recipe.Config ? ", Id " + recipe.Config->Document.Id : std::string()) +
                   "), if it fits the module's catalog";
        case RecipeStep::Verify: return "the configuration is read back and must be the one written";
        case RecipeStep::Record: return "the production record is added to sniffer.ini";
        case RecipeStep::Run: return "the firmware is started with RUN";
    }
    return "";
}

}  // namespace

std::string RecipePlan(const Recipe& recipe) {
    std::string plan = "Recipe " + recipe.Path + " (SHA-256 " + recipe.Sha256 + ")\nEach module:\n";
    for (RecipeStep step : RecipeSteps(recipe)) {
        const std::string name = StepName(step);
        plan += "  " + name + std::string(11 - name.size(), ' ') + StepPlan(recipe, step) + "\n";
    }
    return plan;
}

bool OnOrder(const Recipe& recipe, const std::string& usbSerial) {
    return !recipe.UsbSerialsFile || recipe.UsbSerials.count(usbSerial) > 0;
}

std::string OffOrderReason(const Recipe& recipe, const std::string& usbSerial) {
    return "the USB serial " + (usbSerial.empty() ? std::string("(none)") : ShortText(usbSerial)) +
           " is not on the order's list " + recipe.UsbSerialsFile.value_or("");
}

std::string OtherSha256(const std::string& found, const std::string& pinned) {
    return "SHA-256 is " + found + "; the recipe gives " + pinned;
}

}  // namespace sb
