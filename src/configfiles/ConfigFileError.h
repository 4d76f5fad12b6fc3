#pragma once
#include <stdexcept>
#include <string>

namespace sb {

// What is wrong with a configuration file, or with a module's configuration
// taken as one.
enum class ConfigFault {
    Unreadable,        // missing, no regular file, no rights, too large
    NotJson,
    CutShort,          // JSON that ends before the document does
    OtherFormat,       // JSON, but no configuration document
    OtherVersion,
    BadField,          // a field missing, of the wrong kind, or not of this document
    CatalogRefused,
    WrongImageLength,  // other than the catalog's CfgLen
    NotHex,
    CannotWrite,       // the file or the history folder
};

// The one failure of reading and writing configuration files. what() names
// the file (or the module) and what is wrong, ready for a message box or a
// line on standard error.
class ConfigFileError : public std::runtime_error {
public:
    ConfigFileError(ConfigFault fault, const std::string& source, const std::string& what)
        : std::runtime_error(source + ": " + what), fault_(fault) {}
    ConfigFault Fault() const { return fault_; }

private:
    ConfigFault fault_;
};

}  // namespace sb
