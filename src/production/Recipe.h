#pragma once
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "configfiles/ConfigFile.h"

// A production recipe (*.sbrecipe): one product's programming in one JSON
// document, every file it names pinned by its SHA-256:
//
//   {"format": "servicebay-recipe", "version": 1,
//    "firmware": {"file": "fw.cod", "sha256": "9f2c..."},
//    "configuration": {"file": "variant.sbconf", "sha256": "41d0..."},   optional
//    "expect": {"PName": "Sniffer", "usb_serials_file": "order.txt"},   optional, each member too
//    "production_record": true, "run_after": true}
//
// Paths are taken relative to the recipe's folder. A member this program
// does not know is refused: a misspelt "expect" that was passed over would
// program modules without the check the recipe's author wrote down.
//
// CheckRecipe reads the recipe and every file it names, and collects every
// reason to refuse it, not only the first; the production line carries out
// a recipe only when there is none. The window's station and servicebay-cli
// both call it.
namespace sb {

inline constexpr const char* kRecipeFormat = "servicebay-recipe";
inline constexpr int kRecipeVersion = 1;

enum class RecipeFault {
    Unreadable,   // the recipe itself: missing, too large, not JSON, cut short
    BadField,     // another format or version; a member missing, of the wrong kind, or unknown
    FileMissing,  // a file it names is missing, empty or unreadable
    HashDiffers,  // a file it names has another SHA-256 than the recipe gives
    FileRefused,  // its configuration or its list of USB serials cannot be taken
};

struct RecipeProblem {
    RecipeFault Fault;
    std::string Message;  // names the file and what is wrong
};

// A file of the recipe: its absolute path and the SHA-256 the recipe pins
// it to (64 lower-case hex digits).
struct PinnedFile {
    std::string File;
    std::string Sha256;
};

struct Recipe {
    std::string Path;    // absolute
    std::string Sha256;  // of the recipe file itself, for the log
    PinnedFile Firmware;
    int64_t FirmwareSize = 0;  // as read by the check
    std::optional<PinnedFile> Configuration;
    // The configuration, read from the very bytes whose SHA-256 was checked.
    std::optional<LoadedConfig> Config;
    std::optional<std::string> ExpectedPName;   // GETNAME must answer exactly this
    std::optional<std::string> UsbSerialsFile;  // absolute
    std::set<std::string> UsbSerials;           // of the order, read from UsbSerialsFile
    bool ProductionRecord = false;
    bool RunAfter = false;
};

struct RecipeCheck {
    sb::Recipe Recipe;  // as far as it could be read
    std::vector<RecipeProblem> Problems;
    bool Taken = false;  // a recipe of this format and version, whose members were read
    bool Ok() const { return Problems.empty(); }
};

RecipeCheck CheckRecipe(const std::string& path);

// The steps of one module under a recipe, in the order they are carried
// out; a module that fails one is not taken any further.
enum class RecipeStep { Boot, Identity, Download, Configure, Verify, Record, Run };

// The word of a step in the log: "boot", "identity", ...
const char* StepName(RecipeStep step);
std::optional<RecipeStep> StepOfName(const std::string& name);

// Boot, identity and download always; configure and verify with a
// configuration; record and run where the recipe asks for them.
std::vector<RecipeStep> RecipeSteps(const Recipe& recipe);

// "SHA-256 is <found>; the recipe gives <pinned>": why bytes are not the
// ones a recipe pins.
std::string OtherSha256(const std::string& found, const std::string& pinned);

// What a module goes through under the recipe, one step a line, for people.
std::string RecipePlan(const Recipe& recipe);

// Whether a module of that USB serial belongs to the order; every module
// does when the recipe names no list.
bool OnOrder(const Recipe& recipe, const std::string& usbSerial);
// Why a module of that USB serial is refused, for the log.
std::string OffOrderReason(const Recipe& recipe, const std::string& usbSerial);

// The list of USB serials in the text: one a line, blanks around it taken
// away; blank lines and lines that begin with '#' are passed over. Adds a
// problem (naming source and the line) for a serial given twice, one with a
// control character, and a list without any.
std::set<std::string> ParseUsbSerials(const std::string& text, const std::string& source,
                                      std::vector<RecipeProblem>& problems);

}  // namespace sb
