#pragma once
#include <QComboBox>
#include <QListWidget>
#include <functional>
#include <string>
#include <vector>

// The file chooser's three lists. Each keeps its value as a property of its
// own (Drive, Path, Pattern) and tells of a change the way the chooser's
// events need it: a new value that differs from the old one is a change, the
// same value again is none. A path that is no folder is refused with
// std::filesystem::filesystem_error, and the list stays as it was. A choice
// by the technician (a drive picked, a folder row activated) is applied by
// the screen that holds the lists, which decides what a failure means.
namespace sb::ui {

// Where the drive list takes the mount points of the system's storage from;
// tests put a list of their own in place. An empty lookup brings the
// system's back.
using MountLookup = std::function<std::vector<std::string>()>;
void SetMountLookup(MountLookup lookup);

// The drives of this platform: the mount points of its storage, "/" first.
class DriveList final : public QComboBox {
    Q_OBJECT
public:
    explicit DriveList(QWidget* parent = nullptr);

    std::string Drive() const { return drive_; }
    // Any folder: the drive becomes the mount point that holds it.
    void SetDrive(const std::string& folder);
    // The drive of a row, as a pick in the list makes it.
    void ChooseAt(int index);
    const std::vector<std::string>& MountPoints() const { return mountPoints_; }

signals:
    void changed();

private:
    void Choose(const std::string& drive);

    std::vector<std::string> mountPoints_;
    std::string drive_;
};

// The folders from "/" down to Path, then Path's subfolders; a double click
// or Enter on a row (itemActivated) goes there by GoToRow. The list keeps
// that Enter to itself: it enters a folder and presses no default button.
class DirList final : public QListWidget {
    Q_OBJECT
public:
    explicit DirList(QWidget* parent = nullptr);

    std::string Path() const { return path_; }
    void SetPath(const std::string& folder);
    void GoToRow(const QListWidgetItem& item);

signals:
    void changed();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Fill();

    std::string path_;
};

// The files of Path that match Pattern. A click (or a move of the
// selection by the keys) is the list's click.
class FileList final : public QListWidget {
    Q_OBJECT
public:
    explicit FileList(QWidget* parent = nullptr);

    std::string Path() const { return path_; }
    void SetPath(const std::string& folder);
    std::string Pattern() const { return pattern_; }
    void SetPattern(const std::string& pattern);
    // The selected name; empty when none is selected.
    std::string FileName() const;

signals:
    void clicked();
    void patternChanged();

private:
    void Fill();

    std::string path_;
    std::string pattern_ = "*";
};

}  // namespace sb::ui
