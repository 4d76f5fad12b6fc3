#include "update/ChooserLists.h"

#include <QApplication>
#include <QSignalBlocker>
#include <QStorageInfo>
#include <QStyle>
#include <algorithm>
#include <exception>

#include "update/FolderListing.h"
#include "update/PathText.h"

namespace sb::ui {
namespace {

constexpr int kPathRole = Qt::UserRole;

std::vector<std::string> StorageMountPoints() {
    std::vector<std::string> points{"/"};
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid() || !volume.isReady()) continue;
        const std::string point = PathOf(volume.rootPath());
        if (std::find(points.begin(), points.end(), point) == points.end()) points.push_back(point);
    }
    std::sort(points.begin() + 1, points.end());
    return points;
}

}  // namespace

DriveList::DriveList(QWidget* parent) : QComboBox(parent), mountPoints_(StorageMountPoints()) {
    for (const std::string& point : mountPoints_) addItem(PathText(point), PathText(point));
    drive_ = mountPoints_.front();
    connect(this, &QComboBox::activated, this, [this](int index) {
        Choose(PathOf(itemData(index).toString()));
    });
}

void DriveList::SetDrive(const std::string& folder) { Choose(MountPointOf(ExistingFolder(folder), mountPoints_)); }

void DriveList::Choose(const std::string& drive) {
    {
        const QSignalBlocker quiet(this);
        setCurrentIndex(findData(PathText(drive)));
    }
    if (drive == drive_) return;
    drive_ = drive;
    emit changed();
}

DirList::DirList(QWidget* parent) : QListWidget(parent) {
    connect(this, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
        try {
            SetPath(PathOf(item->data(kPathRole).toString()));
        } catch (const std::exception&) {
            Fill();  // the folder has gone in the meantime
        }
    });
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
        auto* item = new QListWidgetItem(row.Open ? open : closed, QString(row.Level * 2, QLatin1Char(' ')) + PathText(row.Name));
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
