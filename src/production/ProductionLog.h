#pragma once
#include <stdexcept>
#include <string>

#include "production/ModuleRecord.h"

// The log of a production run: JSON lines of the modules' attempts,
// appended to a file that may hold the lines of earlier runs. Each line goes
// out with one write on a descriptor opened for appending, so it reaches the
// file whole or not at all, also when the program dies right behind it, and
// lines of two programs on one file never mix; a write that a full disk cuts
// short is taken back. Each line is on the disk when Append returns.
namespace sb {

struct LogError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class ProductionLog {
public:
    // Opens (creates) the file for appending; throws LogError when that is
    // not possible, so a run refuses to start without its log.
    explicit ProductionLog(const std::string& path);
    ~ProductionLog();
    ProductionLog(const ProductionLog&) = delete;
    ProductionLog& operator=(const ProductionLog&) = delete;

    // Throws LogError when the line could not be written whole, or not be
    // brought onto the disk.
    void Append(const ModuleRecord& record);

    const std::string& Path() const { return path_; }

private:
    std::string path_;
    int fd_ = -1;
    bool cutShort_ = false;
};

}  // namespace sb
