#pragma once
#include <functional>

#include "config/Types.h"
#include "editing/EditTree.h"
#include "editing/ValueEditors.h"

namespace sb {

// What the technician does in the option tree: a double click on an option
// opens its value edit form; a click on a check box is noted by NodeCheck and
// carried out when the mouse button comes up (MouseUp). Every road that
// changes the option ends with the new bits in the working image, the
// option node's text and tag, and showImage, which puts the image's hex text
// into txtCfgEdited (and so rebuilds the tree when the text changed).
//
// A failure inside an event (no node selected, an index beyond the catalog)
// ends it at once and silently; what was done so far stays.
class TreeEvents {
public:
    TreeEvents(DeviceInfo& device, EditTree& tree, ValueEditors& editors, std::function<void()> showImage);

    void NodeCheck(TreeNode& node);
    void MouseUp();
    void DblClick();

    bool NodeCheckPending() const { return nodeCheckPending_; }

private:
    struct OptionRef;

    void RunSilently(const std::function<void()>& event);
    void DblClickSteps();
    void MouseUpSteps();
    // Root and option nodes hold no state: their box is emptied, and an
    // option open for editing gets its form when opensForm says so.
    void OnOptionOrRoot(TreeNode& node, const std::function<bool(const OptionRef&)>& opensForm);
    OptionRef OptionOfNode(TreeNode& node);
    bool OpenForEditing(const OptionRef& ref, TreeNode& node);
    void EditInForm(const OptionRef& ref, TreeNode& node);
    void WriteBack(const OptionRef& ref, TreeNode& node, std::string value);
    // false when a locked list refuses the entry
    bool ApplyListEntry(const OptionRef& ref, TreeNode& optionNode, TreeNode& entryNode);
    void ApplyMember(const OptionRef& ref, TreeNode& optionNode, TreeNode& memberNode);
    template <class Visit>
    void ForEachChild(TreeNode& parent, Visit visit);

    DeviceInfo& device_;
    EditTree& tree_;
    ValueEditors& editors_;
    std::function<void()> showImage_;
    bool nodeCheckPending_ = false;
};

}  // namespace sb
