#pragma once
#include <chrono>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "production/ModuleRecord.h"
#include "production/ProductionLine.h"

// The modules of a production run as they go: on a terminal one line per
// module in progress (port, serial, bar, rate) or waiting for its turn, drawn again in place, and a
// line that stays for each module that ended; otherwise plain lines, one at
// each tenth of a transfer and one at each end.
namespace sb::cli {

class ProgressBoard {
public:
    ProgressBoard(std::ostream& out, bool terminal) : out_(out), terminal_(terminal) {}

    // attempt: the module's, shown from the second on.
    void Started(const ModuleJob& job, int attempt);
    void Progress(const ModuleJob& job, const XmodemProgress& progress);
    // record: as logged; null for a switch into the boot loader that succeeded.
    void Ended(const ModuleJob& job, const ModuleRecord* record, bool ok);
    // A module waits for its turn: a row that says so.
    void Waiting(const ModuleJob& job);
    // A waiting module that will not be started.
    void Withdrawn(const ModuleJob& job);
    // A line of its own above the rows in progress.
    void Note(const std::string& line);

private:
    using Clock = std::chrono::steady_clock;
    struct Row {
        std::string who;  // port and serial
        XmodemProgress progress;
        Clock::time_point start = Clock::now();
        int tenth = -1;
        bool waiting = false;
    };
    std::string RowText(const Row& row) const;
    void Draw(const std::vector<std::string>& lasting, bool force);

    std::ostream& out_;
    bool terminal_;
    std::map<std::string, Row> rows_;  // by port
    int drawn_ = 0;                    // rows on the terminal below the lasting lines
    Clock::time_point lastDraw_;
};

}  // namespace sb::cli
