#include "update/ChooserLists.h"

#include <QApplication>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QStorageInfo>
#include <QStyle>
#include <algorithm>

#include "update/FolderListing.h"
#include "update/PathText.h"

namespace sb::ui {
namespace {

constexpr int kPathRole = Qt::UserRole;

MountLookup mountLookup;

std::vector<std::string> StorageMountPoints() {
    std::vector<std::string> points;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (volume.isValid() && volume.isReady()) points.push_back(PathOf(volume.rootPath()));
    }
    return points;
}

// "/" first, then the others sorted, each once.
std::vector<std::string> Drives(std::vector<std::string> points) {
    std::sort(points.begin(), points.end());
    points.erase(std::unique(points.begin(), points.end()), points.end());
    points.erase(std::remove(points.begin(), points.end(), "/"), points.end());
    points.insert(points.begin(), "/");
    return points;
}

}  // namespace

void SetMountLookup(MountLookup lookup) { mountLookup = std::move(lookup); }

DriveList::DriveList(QWidget* parent)
    : QComboBox(parent), mountPoints_(Drives(mountLookup ? mountLookup() : StorageMountPoints())) {
    for (const std::string& point : mountPoints_) addItem(PathText(point), PathText(point));
    drive_ = mountPoints_.front();
}

void DriveList::SetDrive(const std::string& folder) { Choose(MountPointOf(ExistingFolder(folder), mountPoints_)); }

void DriveList::ChooseAt(int index) { Choose(PathOf(itemData(index).toString())); }

void DriveList::Choose(const std::string& drive) {
    {
        const QSignalBlocker quiet(this);
        setCurrentIndex(findData(PathText(drive)));
    }
    if (drive == drive_) return;
    drive_ = drive;
    emit changed();
}

DirList::DirList(QWidget* parent) : QListWidget(parent) {}

void DirList::GoToRow(const QListWidgetItem& item) { SetPath(PathOf(item.data(kPathRole).toString())); }

// The item view activates the row and then lets Enter go on to the dialog.
void DirList::keyPressEvent(QKeyEvent* event) {
    QListWidget::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) event->accept();
}

void DirList::SetPath(const std::string& folder) {
    const std::string plain = ExistingFolder(folder);
    const bool change = plain != path_;
    path_ = plain;
    Fill();
    if (change) emit changed();
}

void DirList::Fill() {
    clear();
    const QIcon open = style()->standardIcon(QStyle::SP_DirOpenIcon);
    const QIcon closed = style()->standardIcon(QStyle::SP_DirIcon);
    for (const FolderRow& row : FolderRows(path_)) {
        auto* item =
            new QListWidgetItem(row.Open ? open : closed, QString(row.Level * 2, QLatin1Char(' ')) + PathText(row.Name));
        item->setData(kPathRole, PathText(row.Path));
        addItem(item);
        if (row.Path == path_) setCurrentItem(item);
    }
}

FileList::FileList(QWidget* parent) : QListWidget(parent) {
    connect(this, &QListWidget::itemSelectionChanged, this, [this] {
        if (!selectedItems().isEmpty()) emit clicked();
    });
}

void FileList::SetPath(const std::string& folder) {
    path_ = ExistingFolder(folder);
    Fill();
}

void FileList::SetPattern(const std::string& pattern) {
    const bool change = pattern != pattern_;
    pattern_ = pattern;
    if (!path_.empty()) Fill();
    if (change) emit patternChanged();
}

std::string FileList::FileName() const {
    const QList<QListWidgetItem*> selected = selectedItems();
    return selected.isEmpty() ? std::string() : PathOf(selected.front()->text());
}

void FileList::Fill() {
    const QSignalBlocker quiet(this);
    clear();
    for (const std::string& name : MatchingFiles(path_, pattern_)) addItem(PathText(name));
}

}  // namespace sb::ui
