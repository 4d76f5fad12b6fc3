#pragma once
#include <nlohmann/json.hpp>

#include "support/SystemView.h"

namespace sb::test {

// A machine described by a JSON object: "files" (path: text; "@path" reads a
// file of the sources), "links" (path: target), "devices", "owners" (path:
// [uid, gid, mode]), "acl" (path: [uid...]), "writable" (paths), "user",
// "uid", "pid", "groups". A folder lists the names below it in any of these.
class FakeSystem final : public support::SystemView {
public:
    explicit FakeSystem(nlohmann::json machine) : m_(std::move(machine)) {
        for (const char* kind : {"files", "links", "owners", "acl"})
            if (!m_.contains(kind)) m_[kind] = nlohmann::json::object();
        for (const char* kind : {"devices", "writable"})
            if (!m_.contains(kind)) m_[kind] = nlohmann::json::array();
    }

    std::optional<std::string> Read(const std::string& path) const override;
    std::vector<std::string> List(const std::string& folder) const override;
    std::string Link(const std::string& path) const override { return m_["links"].value(path, ""); }
    std::vector<support::SerialDevice> SerialDevices() const override;
    std::optional<support::FileOwner> Owner(const std::string& path) const override;
    std::vector<uid_t> AclUsers(const std::string& path) const override {
        return m_["acl"].value(path, std::vector<uid_t>{});
    }
    bool MayWrite(const std::string& path) const override;
    bool Exists(const std::string& path) const override;
    uid_t Uid() const override { return m_.at("uid"); }
    pid_t Pid() const override { return m_.at("pid"); }
    std::vector<gid_t> Groups() const override { return m_.at("groups"); }
    std::string UserName() const override { return m_.at("user"); }

private:
    nlohmann::json m_;
};

}  // namespace sb::test
