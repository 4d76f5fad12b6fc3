#include "update/ProductionRecord.h"

#include <cmath>
#include <limits>
#include <string_view>

#include "helpers/HexText.h"
#include "helpers/IniFile.h"
#include "helpers/NumberText.h"
#include "helpers/Overflow.h"
#include "helpers/TrimBlanks.h"
#include "link/CommandSet.h"
#include "link/SkipOnPortError.h"
#include "link/Terminal.h"
#include "update/SignText.h"

namespace sb {
namespace {

// QTY as a number: no number, an empty text or one beyond a 32-bit count
// read as 0. The count is whole; a fraction rounds as a classic integer
// assignment does, half to even.
int32_t NextRecordNumber(const std::string& iniPath) {
    double count = 0;
    try {
        count = ReadNumber(IniReadValue(kStatSection, kStatQuantityKey, "0", iniPath));
    } catch (const OverflowError&) {
    }
    const double next = std::nearbyint(count + 1);
    if (!(next >= std::numeric_limits<int32_t>::min() && next <= std::numeric_limits<int32_t>::max())) return 1;
    return static_cast<int32_t>(next);
}

class Exchanges {
public:
    Exchanges(SerialPort& port, StatusText& status, ProductionRecord& record)
        : port_(port), status_(status), record_(record) {}

    // The trimmed answer; a failing port leaves it empty and the record goes on.
    std::string Ask(const std::string& command) {
        std::string answer;
        auto failure = SkipOnPortError([&] { answer = TrimBlanks(TerminalExecute(command, port_, status_)); });
        if (failure && !record_.PortFailure) record_.PortFailure = std::move(failure);
        return answer;
    }

private:
    SerialPort& port_;
    StatusText& status_;
    ProductionRecord& record_;
};

std::string Command(std::string_view word) { return std::string(word); }

}  // namespace

ProductionRecord WriteProductionRecord(SerialPort& port, StatusText& status, const std::string& iniPath) {
    ProductionRecord record;
    record.Number = NextRecordNumber(iniPath);
    record.Section = kRecordSectionPrefix + Uint32ToHex(record.Number);

    Exchanges module(port, status, record);
    record.SN = module.Ask(Command(cmd::GETSN));
    record.Ver = module.Ask(Command(cmd::GETVER));
    record.Name = module.Ask(Command(cmd::GETNAME));
    record.Date = module.Ask(Command(cmd::GETPDATE));
    record.UID = module.Ask(Command(cmd::GETUID));

    if (record.UID.size() != kUidLength) {
        record.End = RecordEnd::UidNotSixteen;
        return record;
    }
    record.Cleared = module.Ask(Command(cmd::CLROTP) + record.UID);
    // Anywhere in the answer, so that "NOK" passes as well.
    if (record.Cleared.find(cmd::AnswerOK) == std::string::npos) {
        record.End = RecordEnd::NotCleared;
        return record;
    }
    if (record.SN == cmd::AnswerError) {
        record.End = RecordEnd::SerialError;
        return record;
    }

    const bool written = IniWriteValues(
        {
            {kStatSection, kStatQuantityKey, SignText(record.Number)},
            {record.Section, "SN", record.SN},
            {record.Section, "Ver", record.Ver},
            {record.Section, "Name", record.Name},
            {record.Section, "Date", record.Date},
            {record.Section, "UID", record.UID},
        },
        iniPath);
    record.End = written ? RecordEnd::Written : RecordEnd::WriteFailed;
    return record;
}

}  // namespace sb
