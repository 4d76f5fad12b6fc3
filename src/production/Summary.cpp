#include "production/Summary.h"

#include <algorithm>
#include <cstdio>

#include "config/Latin1Text.h"

namespace sb {
namespace {

std::string Padded(std::string text, size_t width) {
    if (text.size() < width) text.append(width - text.size(), ' ');
    return text;
}

}  // namespace

Summary Summarize(const std::vector<ModuleRecord>& records) {
    Summary summary;
    for (const ModuleRecord& record : records) {
        auto row = std::find_if(summary.Rows.begin(), summary.Rows.end(),
                                [&](const SummaryRow& r) { return r.Last.Module == record.Module; });
        if (row == summary.Rows.end()) row = summary.Rows.insert(summary.Rows.end(), SummaryRow{});
        row->Last = record;
        ++row->Attempts;
    }
    return summary;
}

std::string ModuleName(const std::string& port, const std::string& usbSerial) {
    return usbSerial.empty() ? Latin1ToTerminal(port) : Latin1ToTerminal(usbSerial) + " (" + Latin1ToTerminal(port) + ")";
}

bool Summary::AllSucceeded() const { return Failed().empty(); }

std::vector<const SummaryRow*> Summary::Failed() const {
    std::vector<const SummaryRow*> failed;
    for (const SummaryRow& row : Rows)
        if (!Succeeded(row.Last)) failed.push_back(&row);
    return failed;
}

std::string Summary::Table() const {
    const std::vector<std::string> head = {"Serial", "Port", "Result", "Tries", "Bytes", "Seconds"};
    std::vector<std::vector<std::string>> cells = {head};
    for (const SummaryRow& row : Rows) {
        char seconds[32];
        std::snprintf(seconds, sizeof seconds, "%.1f", row.Last.Seconds);
        cells.push_back({row.Last.UsbSerial.empty() ? "-" : Latin1ToTerminal(row.Last.UsbSerial), Latin1ToTerminal(row.Last.Port),
                         ResultName(row.Last.Result), std::to_string(row.Attempts),
                         std::to_string(row.Last.BytesProgrammed), seconds});
    }
    std::vector<size_t> widths(head.size(), 0);
    for (const auto& line : cells)
        for (size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], line[i].size());
    std::string table;
    for (const auto& line : cells) {
        std::string text;
        for (size_t i = 0; i < line.size(); ++i) text += Padded(line[i], widths[i] + 2);
        table += text.substr(0, text.find_last_not_of(' ') + 1) + '\n';
    }
    const auto failed = Failed();
    table += std::to_string(Rows.size() - failed.size()) + " of " + std::to_string(Rows.size()) + " modules programmed";
    if (!failed.empty()) {
        table += "; failed:";
        for (const SummaryRow* row : failed) {
            table += ' ' + ModuleName(row->Last.Port, row->Last.UsbSerial) + " [" + ResultName(row->Last.Result) + "]";
            if (row != failed.back()) table += ',';
        }
    }
    return table + '\n';
}

}  // namespace sb
