#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"
#include "JsonOutput.h"
#include "config/Catalog.h"
#include "config/ConfigTool.h"
#include "config/Latin1Text.h"
#include "config/MemoryOptionTree.h"
#include "configfiles/ConfigFile.h"
#include "helpers/BinaryFile.h"
#include "helpers/BitMasks.h"
#include "helpers/HexText.h"
#include "helpers/Overflow.h"

// decode and set: a catalog file and an image, without a module. The image
// is a hex text or one of the catalog's predefined configurations; decode
// prints its option tree, set changes options and prints the new hex text.
namespace sb::cli {
namespace {

struct CatalogOptions {
    std::string catalog;
    std::string image;  // hex text
    int config = -1;    // index of a predefined configuration
    bool json = false;
    bool force = false;
    std::vector<std::string> assignments;
    std::string output;  // set: a configuration file of the result
};

[[noreturn]] void Fail(int status, const std::string& message) {
    std::cerr << message << '\n';
    throw CLI::RuntimeError(status);
}

// What the technician types, in the catalog's one byte a character.
std::string FromTerminal(const std::string& text) { return IsUtf8(text) ? Utf8ToLatin1(text) : text; }

// A configuration file brings its catalog, its module's identity and its
// image (CfgImage); a catalog document only the catalog.
DeviceInfo LoadDevice(const std::string& path) {
    if (IsConfigFilePath(path)) return ReadConfigFile(path).Device;
    DeviceInfo device;
    ReadBinaryFile(path, device.InfoFile);
    std::string reason;
    if (!LoadCatalog(device, reason)) {
        if (!reason.empty()) std::cerr << Latin1ToTerminal(reason) << '\n';
        Fail(kExitCatalogRefused, "Module do not support info file feature");
    }
    return device;
}

std::string ImageOf(const CatalogOptions& options, const DeviceInfo& device) {
    const PredefCfgList& cfgs = device.PredefCfgs;
    if (options.config >= 0) {
        if (options.config >= cfgs.Count())
            Fail(kExitUsage, "No configuration " + std::to_string(options.config) + ": the catalog has " +
                                 std::to_string(cfgs.Count()) + ", numbered from 0");
        return cfgs.Items[static_cast<size_t>(options.config)].Data;
    }
    if (options.image.empty() && IsConfigFilePath(options.catalog)) return device.CfgImage;
    if (options.image.empty()) Fail(kExitUsage, "Give the image: --image HEX or --config INDEX");
    std::string image;
    try {
        image = HexToBytes(NormalizeHex(options.image));
    } catch (const OverflowError&) {
    }
    if (image.empty()) Fail(kExitUsage, "--image takes a hex text of whole bytes");
    if (image.size() != static_cast<size_t>(device.Options.CfgLen))
        std::cerr << "Note: the image has " << image.size() << " bytes, the catalog's images have "
                  << device.Options.CfgLen << '\n';
    return image;
}

[[noreturn]] void NoConfiguration(const std::string& image, const std::string& hint) {
    Fail(kExitNoConfiguration, "Something wrong: no configuration of the catalog has the Id " + ImageId(image) + hint);
}

// decode, for people: one line a node, indented by level; list entries and
// members with their box, and what the colours tell in words.
void PrintNode(const MemoryTreeNode& node, int level) {
    std::cout << std::string(2 * level, ' ');
    const uint32_t color = node.ForeColor().value_or(kColorBlack);
    if (node.Checked()) std::cout << (*node.Checked() ? "[x] " : "[ ] ");
    std::cout << Latin1ToTerminal(node.Text());
    if (level == 1 && color == kColorRed) std::cout << "  (locked)";
    if (level == 2 && color == kColorBlue) std::cout << "  (preset)";
    if (level == 2 && color == kColorRed) std::cout << "  (fixed)";
    if (level == 2 && color == kColorGrayText) std::cout << "  (locked)";
    std::cout << '\n';
    for (const MemoryTreeNode* child : node.Children()) PrintNode(*child, level + 1);
}

// A node with its fields and its children, as the tree holds them.
Json JsonNode(const MemoryTreeNode& node) {
    Json out = {{"key", JsonBytes(node.Key())}, {"text", JsonBytes(node.Text())}, {"tag", JsonBytes(node.Tag())}};
    if (node.Expanded()) out["expanded"] = *node.Expanded();
    if (node.ForeColor()) out["forecolor"] = *node.ForeColor();
    if (node.Checked()) out["checked"] = *node.Checked();
    if (node.Bold()) out["bold"] = *node.Bold();
    Json children = Json::array();
    for (const MemoryTreeNode* child : node.Children()) children.push_back(JsonNode(*child));
    out["children"] = std::move(children);
    return out;
}

void Decode(const CatalogOptions& options) {
    const DeviceInfo device = LoadDevice(options.catalog);
    const std::string image = ImageOf(options, device);
    MemoryOptionTree tree;
    const bool result = BuildOptionTree(image, device, tree);
    if (options.json) {
        Json nodes = Json::array();
        for (const MemoryTreeNode* root : tree.Roots()) nodes.push_back(JsonNode(*root));
        PrintJson({{"result", result}, {"nodes", std::move(nodes)}});
    } else {
        for (const MemoryTreeNode* root : tree.Roots()) PrintNode(*root, 0);
    }
    if (!result) NoConfiguration(image, "");
}

// An option by its exact name or, failing that, by its index.
int32_t OptionIndex(const DeviceInfo& device, const std::string& name) {
    const auto& items = device.Options.Items;
    std::vector<int32_t> named;
    for (size_t i = 0; i < items.size(); ++i)
        if (items[i].Name == name) named.push_back(static_cast<int32_t>(i));
    if (named.size() == 1) return named.front();
    if (named.size() > 1) {
        std::string indexes;
        for (const int32_t i : named) indexes += " " + std::to_string(i);
        Fail(kExitUsage,
             "More than one option is called \"" + Latin1ToTerminal(name) + "\": give its index, one of" + indexes);
    }
    if (IsDecText(name) && name.size() < 10 && std::stol(name) < device.Options.Count()) return std::stoi(name);
    Fail(kExitUsage, "No option \"" + Latin1ToTerminal(name) +
                         "\" in the catalog; options are named or numbered from 0 to " +
                         std::to_string(device.Options.Count() - 1));
}

[[noreturn]] void WrongValue(const OptionRec& option, const std::string& takes) {
    Fail(kExitUsage, "Wrong Value: " + Latin1ToTerminal(option.Name) + " takes " + takes);
}

// The raw value of the option's type for what the technician typed: a list
// entry's text, or the value itself as the edit forms take it (INT as 1 to
// 8 hex digits within its limits, BIN and BITFIELD as hex text of the
// field's bytes, STR as the field's characters).
std::string RawValueOf(const OptionRec& option, const std::string& typed) {
    if (option.Type != "BITFIELD")
        for (const OptValue& entry : option.Values.Items)
            if (entry.Text == typed) return entry.Value;
    const size_t bytes = (static_cast<size_t>(option.BitLen) + 7) / 8;
    if (option.Type == "INT") {
        const std::string hex = NormalizeHex(typed);
        const double min = HexToUint32(option.MinValue);
        const double max = HexToUint32(option.MaxValue);
        const double value = hex.empty() || hex.size() > 8 ? -1 : HexToUint32(hex);
        if (value < min || value > max)
            WrongValue(option, "a hex number from " + Latin1ToTerminal(option.MinValue) + " to " +
                                   Latin1ToTerminal(option.MaxValue));
        return Uint32ToHex(value);
    }
    if (option.Type == "BIN" || option.Type == "BITFIELD") {
        const std::string hex = NormalizeHex(typed);
        if (hex.empty() || hex.size() != 2 * bytes) WrongValue(option, std::to_string(bytes) + " bytes as hex text");
        return hex;
    }
    if (option.Type == "STR") {
        if (typed.size() != bytes) WrongValue(option, std::to_string(bytes) + " characters");
        return typed;
    }
    Fail(kExitUsage, "Wrong Value: " + Latin1ToTerminal(option.Name) + " is of the type \"" +
                         Latin1ToTerminal(option.Type) +
                         "\", which has no value to write");
}

// The tree lets the technician change only the options that the image's
// configuration shows, and a locked one only to the configuration's value.
void CheckEditable(const DeviceInfo& device, const std::string& image, int32_t index, const std::string& value) {
    const int32_t cfgIndex = FindPredefCfgById(device, ImageId(image));
    if (cfgIndex < 0) NoConfiguration(image, "; --force changes it anyway");
    const PredefCfg& cfg = device.PredefCfgs.Items[static_cast<size_t>(cfgIndex)];
    const OptionRec& option = device.Options.Items[static_cast<size_t>(index)];
    const std::string where = Latin1ToTerminal(option.Name) + " in \"" + Latin1ToTerminal(cfg.Name) + "\"";
    if (!TestBit(cfg.VisibleMask, index, 1)) Fail(kExitUsage, "Hidden option: " + where + "; --force changes it anyway");
    if (!TestBit(cfg.DisabledMask, index, 1)) return;
    std::string trial = image;
    std::string written = value;
    std::string shown;
    SetOptionValue(trial, option, written);
    const std::string own = GetOptionValue(cfg.Data, option, shown);
    if (GetOptionValue(trial, option, shown) != own)
        Fail(kExitUsage, "Locked option: " + where + " stays " + Latin1ToTerminal(own) + "; --force changes it anyway");
}

struct Change {
    int32_t index = 0;
    std::string name;
    std::string value;
    std::string shown;
};

Change Apply(const std::string& assignment, const DeviceInfo& device, std::string& image, bool force) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) Fail(kExitUsage, "Expected NAME=VALUE or INDEX=VALUE: " + assignment);
    Change change;
    change.index = OptionIndex(device, FromTerminal(assignment.substr(0, equals)));
    const OptionRec& option = device.Options.Items[static_cast<size_t>(change.index)];
    change.name = option.Name;
    change.value = RawValueOf(option, FromTerminal(assignment.substr(equals + 1)));
    if (!force) CheckEditable(device, image, change.index, change.value);
    change.shown = SetOptionValue(image, option, change.value);
    if (change.shown == kWrongValue)
        Fail(kExitUsage, "Wrong Value: " + Latin1ToTerminal(option.Name) + " does not lie inside the image");
    return change;
}

void Set(const CatalogOptions& options) {
    const DeviceInfo device = LoadDevice(options.catalog);
    std::string image = ImageOf(options, device);
    std::vector<Change> changes;
    for (const std::string& assignment : options.assignments)
        changes.push_back(Apply(assignment, device, image, options.force));
    if (!options.output.empty()) WriteConfigFile(options.output, MakeConfigDocument(device, image));
    if (!options.json) {
        std::cout << BytesToHex(image) << '\n';
        return;
    }
    Json list = Json::array();
    for (const Change& c : changes)
        list.push_back({{"index", c.index},
                        {"name", JsonBytes(c.name)},
                        {"value", JsonBytes(c.value)},
                        {"shown", JsonBytes(c.shown)}});
    PrintJson({{"image", BytesToHex(image)}, {"changes", std::move(list)}});
}

CLI::App* AddImageCommand(CLI::App& app, const char* name, const char* description,
                          const std::shared_ptr<CatalogOptions>& options) {
    CLI::App* command = app.add_subcommand(name, description);
    command->add_option("catalog", options->catalog,
                        "The catalog document (the module's answer to GETINFOFILE), or a configuration file "
                        "(*.sbconf), whose image is taken when no other is given")
        ->required()
        ->check(CLI::ExistingFile);
    CLI::Option_group* source = command->add_option_group("image", "The configuration image, one of");
    source->add_option("--image", options->image, "The image as hex text");
    source->add_option("--config", options->config, "The image of the catalog's predefined configuration INDEX")
        ->check(CLI::NonNegativeNumber);
    source->require_option(0, 1);
    command->add_flag("--json", options->json, "Print the result as one JSON object");
    return command;
}

}  // namespace

void AddCatalogCommands(CLI::App& app) {
    auto decodeOptions = std::make_shared<CatalogOptions>();
    CLI::App* decode = AddImageCommand(app, "decode", "Print the option tree of an image", decodeOptions);
    decode->callback([decodeOptions] { Decode(*decodeOptions); });

    auto setOptions = std::make_shared<CatalogOptions>();
    CLI::App* set = AddImageCommand(app, "set", "Change options of an image and print its new hex text", setOptions);
    set->add_option("assignments", setOptions->assignments,
                    "NAME=VALUE or INDEX=VALUE: a list entry's text, or the value (INT: hex number, "
                    "BIN and BITFIELD: hex text of the whole field, STR: its characters)")
        ->required();
    set->add_option("--output", setOptions->output,
                    "Also keep the result in this configuration file (*.sbconf), with the catalog and the module "
                    "of the one given");
    set->add_flag("--force", setOptions->force,
                  "Also change options that the image's configuration hides or locks");
    set->callback([setOptions] { Set(*setOptions); });
}

}  // namespace sb::cli
