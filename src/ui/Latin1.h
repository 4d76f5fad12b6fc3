#pragma once
#include <QByteArray>
#include <QString>
#include <string>

// The core's texts are bytes; at a widget one character stands for one byte.
namespace sb::ui {

inline QString Latin1(const std::string& text) {
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string Bytes(const QString& text) {
    const QByteArray bytes = text.toLatin1();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

}  // namespace sb::ui
