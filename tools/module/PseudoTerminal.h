#pragma once
#include <termios.h>

#include <string>

namespace sb::module {

// The module's end of a pseudo-terminal. The program that talks to the
// module opens the slave by its path, as it opens any serial device.
//
// How the master side learns of the slave: once the slave has been opened
// and every opener has closed it again, poll() on the master reports a
// hang-up until the next opening. Before the very first opening there is no
// hang-up, so Open() opens and closes the slave once. An inotify watch on the
// slave's path wakes the module at an opening, so that it sleeps while
// nobody holds the device.
class PseudoTerminal {
public:
    // Throws std::system_error.
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    int MasterFd() const { return master_; }
    // Readable when the slave has been opened or closed.
    int OpeningWatchFd() const { return watch_; }
    const std::string& SlavePath() const { return slavePath_; }

    // Whether some program holds the slave open now.
    bool SlaveOpen() const;
    // The line speed the opener has set, such as B300: the master reads the
    // slave's settings.
    speed_t SlaveSpeed() const;
    // Drops the inotify events that have come in.
    void DrainOpeningWatch() const;

private:
    int master_ = -1;
    int watch_ = -1;
    std::string slavePath_;
};

}  // namespace sb::module
