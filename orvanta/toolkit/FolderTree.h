#pragma once
// FolderTree: the tree of folders the user picks a folder from (where photographs are imported from,
// which folder a view shows): the roots (FolderTreeRoots), and under each its folders, a level read
// only when it is opened.
//
// Contract:
//  - Rows are the folders shown, each indented by its depth, with an expander when it may hold
//    folders. A level is read (through Platform::FileSystem) the first time it is opened: its folders
//    (what stat finds a folder, symbolic links to folders included), not its files and not hidden
//    ones (a name starting with '.'), in the user's language's order. Whether a folder may hold
//    folders is taken from its link count where the file system counts its subfolders there (2: none),
//    else assumed; opening a folder found empty takes its expander away. An unreadable folder opens
//    empty. refresh reads everything again.
//  - Keys: Right opens a folder, or on an open one goes to its first folder; Left closes an open one,
//    or goes to the parent; '+' and '-' open and close; the list's keys move along the
//    rows. A click on an expander opens or closes it without selecting; a double click on a row opens
//    or closes it and fires kItemActivated.
//  - Closing a folder that holds the selection selects the folder. Every change of the selected
//    folder the user makes fires kSelectionChanged. selectPath opens the way down to a folder and
//    selects it without a command.

#include <memory>
#include <string>
#include <vector>

#include "orvanta/toolkit/FolderTreeRoots.h"
#include "orvanta/toolkit/ListControl.h"

namespace Orvanta {

class FolderTree : public ListControl {
public:
    static FolderTree* create(int id, FolderTreeRoots* roots = nullptr, CommandListener* listener = nullptr);
    ~FolderTree() override;

    void refresh();
    int getRowCount() const override { return static_cast<int>(mRows.size()); }
    CString getTitle(int row) const;
    CString getPath(int row) const;
    int getDepth(int row) const;
    bool isExpanded(int row) const;
    // Whether the row shows an expander.
    bool mayHaveChildren(int row) const;
    bool expand(int row);
    void collapse(int row);
    CString getSelectedPath() const { return getPath(getSelection()); }
    bool selectPath(const CString& path);
    // The expander's box of a row, in client coordinates.
    CRect getExpanderRect(int row) const;

    static constexpr int kIndent = 16;
    static constexpr int kExpanderSize = 9;

protected:
    FolderTree(FolderTreeRoots* roots);

    void paintRow(HDC dc, int row, const CRect& rect, bool selected, bool focusRow) override;
    CString getRowText(int row) const override { return getTitle(row); }
    bool onRowKey(int virtualKey) override;
    bool onRowPress(int row, CPoint point) override;
    void activate(int row) override;
    bool onChar(char16_t c) override;

private:
    struct Node;
    void load(Node* node);
    // Appends the node's shown descendants to `rows`.
    static void collectShown(Node* node, std::vector<Node*>& rows);
    int rowOf(const Node* node) const;

    OwnedPtr<FolderTreeRoots> mRoots;
    std::vector<std::unique_ptr<Node>> mTop;
    std::vector<Node*> mRows;
};

}  // namespace Orvanta
