#pragma once
#include <QMouseEvent>
#include <QTreeWidget>
#include <functional>
#include <string>

#include "editing/TreeEvents.h"

namespace sb::ui {

// tvOptions: a tree with a check box on every node. Besides Qt's own signals
// it tells when a mouse button comes up (MouseUp) and of a double click
// (DblClick), each after the tree has handled the event itself, so a click
// on a check box has changed the box before MouseUp is raised. The release
// that ends a double click leaves the box alone: only the first click of it
// turns the box.
//
// The keys that the tree's events take (Return, F2, Space, printable text)
// go to onKey, with the key's text and time stamp, instead of the control's
// own handling, which would turn a box with no MouseUp behind it, and whose
// type-ahead would match the start of any row's text (an entry of an
// expanded list, a configuration's name) rather than an option's name; the
// other keys keep the control's meaning.
class OptionTreeView final : public QTreeWidget {
    Q_OBJECT
public:
    explicit OptionTreeView(QWidget* parent = nullptr);

    // True when the key was taken.
    std::function<bool(TreeKey key, const std::string& text, int64_t atMs)> onKey;

signals:
    void mouseUp();
    void dblClick();

protected:
    using QTreeWidget::edit;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;

private:
    bool releaseEndsDoubleClick_ = false;
};

}  // namespace sb::ui
