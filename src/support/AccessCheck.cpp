#include <algorithm>
#include <sstream>

#include "support/Doctor.h"

// Access to a module's device node: the group that owns it, a membership
// that needs a new login, the access list that logind gives the user at the
// seat.
namespace sb::support {
namespace {

constexpr const char* kCheck = "access";

struct Group {
    std::string Name;
    bool Member = false;  // named in /etc/group or the user's primary group in /etc/passwd
};

// A line of /etc/group or /etc/passwd, split at the colons.
std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line);
    std::string field;
    while (std::getline(in, field, ':')) fields.push_back(field);
    return fields;
}

bool PrimaryGroupIs(const SystemView& system, gid_t gid) {
    std::istringstream passwd(system.Read("/etc/passwd").value_or(""));
    for (std::string line; std::getline(passwd, line);) {
        const auto fields = Fields(line);
        if (fields.size() >= 4 && fields[0] == system.UserName()) return fields[3] == std::to_string(gid);
    }
    return false;
}

Group GroupOf(const SystemView& system, gid_t gid) {
    Group group{std::to_string(gid), PrimaryGroupIs(system, gid)};
    std::istringstream groups(system.Read("/etc/group").value_or(""));
    for (std::string line; std::getline(groups, line);) {
        const auto fields = Fields(line);
        if (fields.size() < 3 || fields[2] != std::to_string(gid)) continue;
        group.Name = fields[0];
        std::istringstream members(fields.size() > 3 ? fields[3] : "");
        for (std::string member; std::getline(members, member, ',');)
            group.Member = group.Member || member == system.UserName();
    }
    return group;
}

bool SeatGivesAccess(const std::vector<SerialDevice>& modules, const std::string& node) {
    for (const auto& device : modules)
        if (device.DevNode == node)
            return std::find(device.Tags.begin(), device.Tags.end(), "uaccess") != device.Tags.end();
    return false;
}

Finding Diagnose(const SystemView& system, const std::string& node, const std::vector<SerialDevice>& modules) {
    const auto owner = system.Owner(node);
    if (!owner)
        return {kCheck, Trouble::NoModule, node + " is not there",
                "plug the module in; servicebay-cli ports lists the ports that are there"};
    const Group group = GroupOf(system, owner->Gid);
    const auto& now = system.Groups();
    const bool inGroupNow = std::find(now.begin(), now.end(), owner->Gid) != now.end();
    const std::string addUser = "sudo usermod -aG " + group.Name + " " + system.UserName() + ", then log out and in again";
    if (group.Member && !inGroupNow)
        return {kCheck, Trouble::Access,
                "you were added to group " + group.Name + ", which may use " + node + ", after you logged in",
                "log out and in again (in this shell alone: newgrp " + group.Name + ")"};
    if (SeatGivesAccess(modules, node)) {
        const auto users = system.AclUsers(node);
        if (std::find(users.begin(), users.end(), system.Uid()) == users.end())
            return {kCheck, Trouble::Access,
                    "the seat's access list of " + node +
                        " does not name you (only the user at the machine's screen gets one, not a remote login)",
                    addUser};
    }
    return {kCheck, Trouble::Access,
            "you may not read and write " + node + ": it belongs to group " + group.Name + ", and you are not in it",
            addUser};
}

}  // namespace

std::vector<Finding> CheckAccess(const SystemView& system, const std::vector<std::string>& nodes,
                                 const std::vector<SerialDevice>& modules) {
    std::vector<Finding> findings;
    for (const auto& node : nodes) {
        if (system.MayWrite(node))
            findings.push_back({kCheck, Trouble::None, "you may read and write " + node, ""});
        else
            findings.push_back(Diagnose(system, node, modules));
    }
    return findings;
}

}  // namespace sb::support
