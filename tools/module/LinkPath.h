#pragma once
#include <string>

namespace sb::module {

// A fixed path that scripts can open without the registry: a symbolic link
// to the module's device, replaced at once when the device changes.
class LinkPath {
public:
    explicit LinkPath(std::string path) : path_(std::move(path)) {}
    ~LinkPath() { Remove(); }
    LinkPath(const LinkPath&) = delete;
    LinkPath& operator=(const LinkPath&) = delete;

    // Throws std::system_error. Nothing happens without a path.
    void PointTo(const std::string& device);
    // Removes the link if it still points where this module set it.
    void Remove();

private:
    std::string path_;
    std::string target_;
};

}  // namespace sb::module
