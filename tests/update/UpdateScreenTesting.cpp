#include "UpdateScreenTesting.h"

#include <QDir>
#include <QFile>
#include <stdexcept>

#include "helpers/IniFile.h"
#include "update/SnifferIni.h"

namespace sb::test {
namespace {

ui::frmFileCtrl& ChooserOf(QDialog& dialog) {
    auto* chooser = qobject_cast<ui::frmFileCtrl*>(&dialog);
    if (!chooser) throw std::logic_error("not the file chooser: " + dialog.objectName().toStdString());
    return *chooser;
}

}  // namespace

UpdateScreenTest::UpdateScreenTest() {
    Application();
    OverrideSnifferIniPath(Ini());
}

UpdateScreenTest::~UpdateScreenTest() { OverrideSnifferIniPath({}); }

std::string UpdateScreenTest::Folder() const { return dir_.path().toStdString(); }

std::string UpdateScreenTest::Ini() const { return Folder() + "/sniffer.ini"; }

std::string UpdateScreenTest::Write(const std::string& name, const std::string& content) const {
    const std::string path = Folder() + "/" + name;
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly) || file.write(content.data(), static_cast<qint64>(content.size())) < 0)
        throw std::runtime_error("cannot write " + path);
    return path;
}

std::string UpdateScreenTest::IniKey(const std::string& section, const std::string& key) const {
    return IniReadValue(section, key, "-", Ini());
}

ModalScript::Step ChooseIn(const std::string& folder, const std::string& name, const char* button) {
    return [=](QDialog& dialog) {
        ui::frmFileCtrl& chooser = ChooserOf(dialog);
        chooser.show();
        chooser.Dir1->SetPath(folder);
        if (!name.empty()) {
            const auto found = chooser.File1->findItems(QString::fromStdString(name), Qt::MatchExactly);
            if (found.size() != 1) throw std::logic_error("no file " + name + " in the list");
            chooser.File1->setCurrentItem(found.front());
        }
        Click(chooser, button);
    };
}

ModalScript::Step NoteOpeningPlace(std::string& dir, std::string& drive, std::string& path, const char* button) {
    return [&dir, &drive, &path, button](QDialog& dialog) {
        ui::frmFileCtrl& chooser = ChooserOf(dialog);
        chooser.show();
        dir = chooser.Dir1->Path();
        drive = chooser.Drive1->Drive();
        path = chooser.File1->Path();
        Click(chooser, button);
    };
}

ui::frmTarnlift& TarnliftOf(QDialog& dialog) {
    auto* tarnlift = qobject_cast<ui::frmTarnlift*>(&dialog);
    if (!tarnlift) throw std::logic_error("not the update screen: " + dialog.objectName().toStdString());
    return *tarnlift;
}

}  // namespace sb::test
