#pragma once
#include <functional>

#include "config/Types.h"
#include "editing/EditTree.h"
#include "editing/TypeAhead.h"
#include "editing/ValueEditors.h"

namespace sb {

// The keys that the option tree takes. Sign is +, - or *, which expand and
// collapse nodes unless they are part of a name being typed; Text is any
// other printable key.
enum class TreeKey { Return, F2, Space, Sign, Text, Other };

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
    // typingPauseMs: the longest pause between two keys of one typed name.
    TreeEvents(DeviceInfo& device, EditTree& tree, ValueEditors& editors, std::function<void()> showImage,
               int64_t typingPauseMs = 400);

    void NodeCheck(TreeNode& node);
    void MouseUp();
    void DblClick();
    // The keyboard's road, with the key's text and time stamp: Return and F2
    // do what a double click does; Space what a click on the selected node's
    // box does, there and then, so nothing is left pending for a later
    // MouseUp; while a name is being typed a blank or a sign belongs to it,
    // else a sign is not the tree's. Text goes
    // to the next shown option whose name begins with what was typed. False
    // for a key that is not the tree's.
    bool KeyPress(TreeKey key, const std::string& text, int64_t atMs);

    bool NodeCheckPending() const { return nodeCheckPending_; }

private:
    struct OptionRef;

    void RunSilently(const std::function<void()>& event);
    void DblClickSteps();
    void MouseUpSteps();
    void ClickBoxByKey();
    void GoToTypedOption();
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
    TypeAhead typeAhead_;
};

}  // namespace sb
