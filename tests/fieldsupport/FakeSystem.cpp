#include "FakeSystem.h"

#include <algorithm>
#include <set>

#include "../helpers/TempFolder.h"

namespace sb::test {

std::optional<std::string> FakeSystem::Read(const std::string& path) const {
    if (!m_["files"].contains(path)) return std::nullopt;
    const std::string text = m_["files"][path];
    if (text.rfind('@', 0) == 0) return TempFolder::Read(std::string(std::getenv("SB_SOURCE_DIR")) + "/" + text.substr(1));
    return text;
}

std::vector<std::string> FakeSystem::List(const std::string& folder) const {
    std::set<std::string> names;
    const std::string prefix = folder + "/";
    for (const char* kind : {"files", "links", "owners"})
        for (const auto& [path, value] : m_[kind].items())
            if (path.rfind(prefix, 0) == 0) names.insert(path.substr(prefix.size(), path.find('/', prefix.size()) - prefix.size()));
    return {names.begin(), names.end()};
}

std::vector<support::SerialDevice> FakeSystem::SerialDevices() const {
    std::vector<support::SerialDevice> devices;
    for (const auto& d : m_["devices"])
        devices.push_back({d.at("node"), d.at("vendor"), d.at("product"), d.value("serial", ""),
                           d.value("properties", std::map<std::string, std::string>{}),
                           d.value("tags", std::vector<std::string>{})});
    return devices;
}

std::optional<support::FileOwner> FakeSystem::Owner(const std::string& path) const {
    if (!m_["owners"].contains(path)) return std::nullopt;
    const auto& o = m_["owners"][path];
    return support::FileOwner{o[0], o[1], o[2]};
}

bool FakeSystem::MayWrite(const std::string& path) const {
    const auto& writable = m_["writable"];
    return std::find(writable.begin(), writable.end(), path) != writable.end();
}

bool FakeSystem::Exists(const std::string& path) const {
    if (path == "/" || m_["files"].contains(path) || m_["owners"].contains(path) || MayWrite(path)) return true;
    return !List(path).empty();
}

}  // namespace sb::test
