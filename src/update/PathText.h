#pragma once
#include <QString>
#include <string>

// File paths at a widget: the system names its files in UTF-8, so a path is
// shown and taken back as UTF-8 (not as a byte text of the wire, which the
// screens show one character a byte).
namespace sb::ui {

inline QString PathText(const std::string& path) { return QString::fromStdString(path); }
inline std::string PathOf(const QString& text) { return text.toStdString(); }

}  // namespace sb::ui
