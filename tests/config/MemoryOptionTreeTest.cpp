#include <gtest/gtest.h>

#include "config/MemoryOptionTree.h"

namespace sb::test {
namespace {

TEST(MemoryOptionTree, FindsByKeyWalksSiblingsAndRefusesATakenKey) {
    MemoryOptionTree tree;
    TreeNode* first = tree.Add(nullptr, "R1", "one");
    TreeNode* second = tree.Add(nullptr, "R2", "two");
    TreeNode* a = tree.Add(first, "A", "a");
    TreeNode* b = tree.Add(first, "B", "b");
    ASSERT_TRUE(first && second && a && b);
    EXPECT_EQ(tree.Add(second, "A", "again"), nullptr);
    EXPECT_EQ(tree.Find("A"), a);
    EXPECT_EQ(tree.Find("a"), nullptr);
    EXPECT_EQ(first->Next(), second);
    EXPECT_EQ(second->Next(), nullptr);
    EXPECT_EQ(first->Child(), a);
    EXPECT_EQ(a->Next(), b);
    EXPECT_EQ(b->Next(), nullptr);
    EXPECT_EQ(second->Child(), nullptr);
    EXPECT_EQ(tree.Node("B")->Parent(), tree.Node("R1"));
    EXPECT_EQ(tree.Size(), 4u);

    tree.Clear();
    EXPECT_EQ(tree.Find("A"), nullptr);
    EXPECT_TRUE(tree.Roots().empty());
    EXPECT_NE(tree.Add(nullptr, "A", "free again"), nullptr);
}

}  // namespace
}  // namespace sb::test
