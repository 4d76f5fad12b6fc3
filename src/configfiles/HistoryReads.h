#pragma once
#include <string>
#include <vector>

#include "configfiles/ConfigHistory.h"

// What the history list says of each kept read besides its time: the
// configuration it held and how far it is from the read before it.
namespace sb {

struct HistoryRead {
    HistoryFile File;
    // The name of the configuration whose Id the image names, in the file's
    // own catalog; empty when the file cannot be read.
    std::string Name;
    // How many options differ from the next older read of the group; -1
    // for the oldest, and when either file cannot be read.
    int Differing = -1;
};

// The files of one group, newest first as the group holds them.
std::vector<HistoryRead> DescribeHistory(const HistoryGroup& group);

}  // namespace sb
