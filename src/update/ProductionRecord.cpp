#include "update/ProductionRecord.h"

#include <cmath>
#include <limits>
#include <string_view>

#include "helpers/FileLock.h"
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

// QTY + 1; no number and an empty text read as 0. The count is whole; a
// fraction rounds as a classic integer assignment does, half to even. None
// when the number leaves the 32-bit count: starting again would overwrite
// the first records.
std::optional<int32_t> NextRecordNumber(const std::string& iniPath) {
    double next = 0;
    try {
        next = std::nearbyint(ReadNumber(IniReadValue(kStatSection, kStatQuantityKey, "0", iniPath)) + 1);
    } catch (const OverflowError&) {
        return std::nullopt;
    }
    if (!(next >= std::numeric_limits<int32_t>::min() && next <= std::numeric_limits<int32_t>::max()))
        return std::nullopt;
    return static_cast<int32_t>(next);
}

// Gives the record the next number and its section; false (and the end
// NoNumberLeft) when the count has none left.
bool TakeNextNumber(ProductionRecord& record, const std::string& iniPath) {
    const std::optional<int32_t> number = NextRecordNumber(iniPath);
    if (!number) {
        record.End = RecordEnd::NoNumberLeft;
        return false;
    }
    record.Number = *number;
    record.Section = kRecordSectionPrefix + Uint32ToHex(record.Number);
    return true;
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

std::string RecordValue(const std::string& answer) {
    std::string value;
    value.reserve(answer.size());
    for (const char c : answer) {
        if (c == '\\')
            value += "\\\\";
        else if (c == '\r')
            value += "\\r";
        else if (c == '\n')
            value += "\\n";
        else
            value += c;
    }
    return value;
}

ProductionRecord WriteProductionRecord(SerialPort& port, StatusText& status, const std::string& iniPath) {
    ProductionRecord record;
    if (!TakeNextNumber(record, iniPath)) return record;

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

    // Several programs may count in one sniffer.ini at once: the number is
    // taken again under the lock, so that the count read and the count
    // written are one step and no two modules share a record.
    const FileLock lock(iniPath);
    if (!TakeNextNumber(record, iniPath)) return record;
    const bool written = IniWriteValues(
        {
            {kStatSection, kStatQuantityKey, SignText(record.Number)},
            {record.Section, "SN", RecordValue(record.SN)},
            {record.Section, "Ver", RecordValue(record.Ver)},
            {record.Section, "Name", RecordValue(record.Name)},
            {record.Section, "Date", RecordValue(record.Date)},
            {record.Section, "UID", RecordValue(record.UID)},
        },
        iniPath, &record.WriteFailure);
    record.End = written ? RecordEnd::Written : RecordEnd::WriteFailed;
    return record;
}

const char* RecordEndText(RecordEnd end) {
    switch (end) {
        case RecordEnd::Written: return "written";
        case RecordEnd::UidNotSixteen: return "the UID has not 16 characters";
        case RecordEnd::NotCleared: return "the module did not confirm CLROTP";
        case RecordEnd::SerialError: return "the module answered Error! to GETSN";
        case RecordEnd::WriteFailed: return "sniffer.ini could not be written";
        case RecordEnd::NoNumberLeft: return "QTY in sniffer.ini has no record number left";
    }
    return "";
}

}  // namespace sb
