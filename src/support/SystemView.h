#pragma once
#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

// What the doctor reads of the machine, and nothing more: files under /proc,
// /etc and the udev rule folders, the serial devices as udev knows them, the
// process's identity and a path's owner, mode and access list. The checks
// take their facts from here, so a test can put any machine below them.
namespace sb::support {

// A serial device as udev describes it, with the USB device it belongs to.
struct SerialDevice {
    std::string DevNode;  // /dev/ttyACM0
    std::string Vendor;   // idVendor, lower-case hex: "c252"
    std::string Product;  // idProduct: "1702"
    std::string Serial;
    std::map<std::string, std::string> Properties;  // ID_MM_DEVICE_IGNORE, ...
    std::vector<std::string> Tags;                  // uaccess, ...
};

struct FileOwner {
    uid_t Uid = 0;
    gid_t Gid = 0;
    unsigned Mode = 0;  // permission bits
};

class SystemView {
public:
    virtual ~SystemView() = default;
    // A whole small file; nullopt when it cannot be read.
    virtual std::optional<std::string> Read(const std::string& path) const = 0;
    // The names in a folder, in no particular order; empty when it cannot be listed.
    virtual std::vector<std::string> List(const std::string& folder) const = 0;
    // Where a symbolic link points; empty when it is none.
    virtual std::string Link(const std::string& path) const = 0;
    virtual std::vector<SerialDevice> SerialDevices() const = 0;
    virtual std::optional<FileOwner> Owner(const std::string& path) const = 0;
    // The users that the path's access list names with read and write rights.
    virtual std::vector<uid_t> AclUsers(const std::string& path) const = 0;
    // Whether this process may read and write the path (a folder: create files in it).
    virtual bool MayWrite(const std::string& path) const = 0;
    virtual bool Exists(const std::string& path) const = 0;
    virtual uid_t Uid() const = 0;
    virtual pid_t Pid() const = 0;
    // The groups of this process, from its login: getgroups() and the effective one.
    virtual std::vector<gid_t> Groups() const = 0;
    virtual std::string UserName() const = 0;
};

// The machine this program runs on.
class LocalSystem final : public SystemView {
public:
    std::optional<std::string> Read(const std::string& path) const override;
    std::vector<std::string> List(const std::string& folder) const override;
    std::string Link(const std::string& path) const override;
    std::vector<SerialDevice> SerialDevices() const override;
    std::optional<FileOwner> Owner(const std::string& path) const override;
    std::vector<uid_t> AclUsers(const std::string& path) const override;
    bool MayWrite(const std::string& path) const override;
    bool Exists(const std::string& path) const override;
    uid_t Uid() const override;
    pid_t Pid() const override;
    std::vector<gid_t> Groups() const override;
    std::string UserName() const override;
};

}  // namespace sb::support
