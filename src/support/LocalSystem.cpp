#include <dirent.h>
#include <libudev.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <fstream>

#include "support/SystemView.h"

namespace sb::support {
namespace {

constexpr std::size_t kReadLimit = 1 << 20;  // rule files and /proc entries are small

std::string Attribute(udev_device* device, const char* name) {
    const char* value = ::udev_device_get_sysattr_value(device, name);
    return value ? value : "";
}

SerialDevice Describe(udev_device* tty, udev_device* usb) {
    SerialDevice device;
    device.DevNode = ::udev_device_get_devnode(tty);
    device.Vendor = Attribute(usb, "idVendor");
    device.Product = Attribute(usb, "idProduct");
    device.Serial = Attribute(usb, "serial");
    for (auto* entry = ::udev_device_get_properties_list_entry(tty); entry; entry = ::udev_list_entry_get_next(entry))
        device.Properties[::udev_list_entry_get_name(entry)] = ::udev_list_entry_get_value(entry) ?: "";
    for (auto* entry = ::udev_device_get_tags_list_entry(tty); entry; entry = ::udev_list_entry_get_next(entry))
        device.Tags.emplace_back(::udev_list_entry_get_name(entry));
    return device;
}

// POSIX access list as the kernel keeps it in the extended attribute: a
// version word, then entries of tag, permissions and id, little-endian.
constexpr uint16_t kAclUser = 0x02;
constexpr uint16_t kAclMask = 0x10;
constexpr uint16_t kReadWrite = 0x06;

uint32_t LittleEndian(const unsigned char* at, int bytes) {
    uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = value << 8 | at[i];
    return value;
}

}  // namespace

std::optional<std::string> LocalSystem::Read(const std::string& path) const {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    // Files of /proc and /sys tell no size: read them piece by piece.
    std::string text;
    char piece[4096];
    while (text.size() < kReadLimit) {
        in.read(piece, sizeof piece);
        text.append(piece, static_cast<std::size_t>(in.gcount()));
        if (!in) break;
    }
    if (in.bad()) return std::nullopt;
    return text;
}

std::vector<std::string> LocalSystem::List(const std::string& folder) const {
    std::vector<std::string> names;
    DIR* dir = ::opendir(folder.c_str());
    if (!dir) return names;
    while (const dirent* entry = ::readdir(dir))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            names.emplace_back(entry->d_name);
    ::closedir(dir);
    return names;
}

std::string LocalSystem::Link(const std::string& path) const {
    char target[4096];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : std::string();
}

std::vector<SerialDevice> LocalSystem::SerialDevices() const {
    std::vector<SerialDevice> devices;
    udev* context = ::udev_new();
    if (!context) return devices;
    udev_enumerate* walk = ::udev_enumerate_new(context);
    ::udev_enumerate_add_match_subsystem(walk, "tty");
    ::udev_enumerate_scan_devices(walk);
    for (auto* entry = ::udev_enumerate_get_list_entry(walk); entry; entry = ::udev_list_entry_get_next(entry)) {
        udev_device* tty = ::udev_device_new_from_syspath(context, ::udev_list_entry_get_name(entry));
        if (!tty) continue;
        // The USB device is a parent; its interface and the tty belong to it.
        udev_device* usb = ::udev_device_get_parent_with_subsystem_devtype(tty, "usb", "usb_device");
        if (usb && ::udev_device_get_devnode(tty)) devices.push_back(Describe(tty, usb));
        ::udev_device_unref(tty);
    }
    ::udev_enumerate_unref(walk);
    ::udev_unref(context);
    return devices;
}

std::optional<FileOwner> LocalSystem::Owner(const std::string& path) const {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return std::nullopt;
    return FileOwner{info.st_uid, info.st_gid, static_cast<unsigned>(info.st_mode & 07777)};
}

std::vector<uid_t> LocalSystem::AclUsers(const std::string& path) const {
    unsigned char acl[1024];
    const ssize_t length = ::getxattr(path.c_str(), "system.posix_acl_access", acl, sizeof acl);
    std::vector<uid_t> users;
    if (length < 4) return users;
    uint16_t mask = kReadWrite;
    for (ssize_t at = 4; at + 8 <= length; at += 8)
        if (LittleEndian(acl + at, 2) == kAclMask) mask = static_cast<uint16_t>(LittleEndian(acl + at + 2, 2));
    for (ssize_t at = 4; at + 8 <= length; at += 8) {
        const auto permissions = LittleEndian(acl + at + 2, 2) & mask;
        if (LittleEndian(acl + at, 2) == kAclUser && (permissions & kReadWrite) == kReadWrite)
            users.push_back(static_cast<uid_t>(LittleEndian(acl + at + 4, 4)));
    }
    return users;
}

bool LocalSystem::MayWrite(const std::string& path) const {
    struct stat info {};
    const int mode = ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) ? W_OK | X_OK : R_OK | W_OK;
    return ::access(path.c_str(), mode) == 0;
}

bool LocalSystem::Exists(const std::string& path) const { return ::access(path.c_str(), F_OK) == 0; }

uid_t LocalSystem::Uid() const { return ::getuid(); }

pid_t LocalSystem::Pid() const { return ::getpid(); }

std::vector<gid_t> LocalSystem::Groups() const {
    const int count = ::getgroups(0, nullptr);
    std::vector<gid_t> groups(static_cast<std::size_t>(count > 0 ? count : 0));
    if (count > 0) groups.resize(static_cast<std::size_t>(::getgroups(count, groups.data())));
    groups.push_back(::getegid());
    return groups;
}

std::string LocalSystem::UserName() const {
    if (const passwd* entry = ::getpwuid(::getuid())) return entry->pw_name;
    return std::to_string(::getuid());
}

}  // namespace sb::support
