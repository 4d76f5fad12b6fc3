#pragma once
#include <QString>
#include <string>

// File paths at a widget. On this platform a name is a string of bytes,
// mostly UTF-8, but any byte but "/" and NUL may stand in it. A path is shown
// as UTF-8 where it is that; each byte that is not part of a UTF-8 sequence
// is carried as the lone surrogate U+DC80 + byte (which no UTF-8 text can
// hold), so that the text gives the very same bytes back.
namespace sb::ui {

QString PathText(const std::string& path);
std::string PathOf(const QString& text);

}  // namespace sb::ui
