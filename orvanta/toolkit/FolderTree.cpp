#include "orvanta/toolkit/FolderTree.h"

#include <sys/stat.h>

#include <algorithm>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

struct FolderTree::Node {
    enum class Children { Unknown, Some, None };

    CString title;
    std::string path;  // UTF-8, as the kernel takes it
    int depth = 0;
    Node* parent = nullptr;
    Children children = Children::Unknown;
    bool loaded = false;
    bool expanded = false;
    std::vector<std::unique_ptr<Node>> folders;
};

namespace {

// What a folder's link count says of its subfolders: on file systems that count them (ext4, xfs,
// tmpfs), two links mean none; a count of one means the file system does not count.
bool mayHoldFolders(const struct stat& info) {
    return info.st_nlink != 2;
}

std::string childPath(const std::string& parent, const std::string& name) {
    return parent == "/" ? "/" + name : parent + "/" + name;
}

}  // namespace

FolderTree::FolderTree(FolderTreeRoots* roots) : mRoots(roots ? roots : FolderTreeRoots::create()) {
    setMinSize(160, 8 * getRowHeight() + 2);
    refresh();
}

FolderTree::~FolderTree() = default;

FolderTree* FolderTree::create(int id, FolderTreeRoots* roots, CommandListener* listener) {
    auto* tree = new FolderTree(roots);
    tree->setId(id);
    if (listener) tree->addCommandListener(listener);
    return tree;
}

void FolderTree::refresh() {
    mTop.clear();
    mRows.clear();
    for (const FolderTreeRoots::Root& root : mRoots->getRoots()) {
        auto node = std::make_unique<Node>();
        node->title = root.title;
        node->path = root.path.toUtf8();
        struct stat info;
        if (Platform::FileSystem::current().stat(node->path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            continue;
        node->children = mayHoldFolders(info) ? Node::Children::Unknown : Node::Children::None;
        mRows.push_back(node.get());
        mTop.push_back(std::move(node));
    }
    rowsReset();
}

// One stat per name, relative to the open folder, tells the folders from the files; the names sort
// by one collation key each.
void FolderTree::load(Node* node) {
    node->loaded = true;
    node->folders.clear();
    std::vector<Platform::FileSystem::DirectoryEntry> found;
    if (Platform::FileSystem::current().readDirectory(node->path.c_str(), &found) != 0) found.clear();
    struct Entry {
        std::string key;
        std::unique_ptr<Node> node;
    };
    std::vector<Entry> entries;
    for (const Platform::FileSystem::DirectoryEntry& entry : found) {
        if (entry.name[0] == '.' || !S_ISDIR(entry.info.st_mode)) continue;
        auto child = std::make_unique<Node>();
        child->title = CString::fromUtf8(entry.name);
        child->path = childPath(node->path, entry.name);
        child->depth = node->depth + 1;
        child->parent = node;
        child->children = mayHoldFolders(entry.info) ? Node::Children::Unknown : Node::Children::None;
        entries.push_back({Platform::textSortKey(child->title), std::move(child)});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.key < b.key; });
    for (Entry& entry : entries) node->folders.push_back(std::move(entry.node));
    node->children = node->folders.empty() ? Node::Children::None : Node::Children::Some;
}

void FolderTree::collectShown(Node* node, std::vector<Node*>& rows) {
    if (!node->expanded) return;
    for (const auto& child : node->folders) {
        rows.push_back(child.get());
        collectShown(child.get(), rows);
    }
}

int FolderTree::rowOf(const Node* node) const {
    const auto it = std::find(mRows.begin(), mRows.end(), node);
    return it == mRows.end() ? -1 : static_cast<int>(it - mRows.begin());
}

CString FolderTree::getTitle(int row) const {
    return row >= 0 && row < getRowCount() ? mRows[row]->title : CString();
}

CString FolderTree::getPath(int row) const {
    return row >= 0 && row < getRowCount() ? CString::fromUtf8(mRows[row]->path) : CString();
}

int FolderTree::getDepth(int row) const {
    return row >= 0 && row < getRowCount() ? mRows[row]->depth : -1;
}

bool FolderTree::isExpanded(int row) const {
    return row >= 0 && row < getRowCount() && mRows[row]->expanded;
}

bool FolderTree::mayHaveChildren(int row) const {
    return row >= 0 && row < getRowCount() && mRows[row]->children != Node::Children::None;
}

bool FolderTree::expand(int row) {
    if (row < 0 || row >= getRowCount()) return false;
    Node* node = mRows[row];
    if (node->expanded) return true;
    if (!node->loaded) load(node);
    if (node->folders.empty()) {
        invalidate();
        return false;
    }
    node->expanded = true;
    std::vector<Node*> shown;
    collectShown(node, shown);
    mRows.insert(mRows.begin() + row + 1, shown.begin(), shown.end());
    rowsInserted(row + 1, static_cast<int>(shown.size()));
    return true;
}

void FolderTree::collapse(int row) {
    if (!isExpanded(row)) return;
    Node* node = mRows[row];
    std::vector<Node*> shown;
    collectShown(node, shown);
    const int count = static_cast<int>(shown.size());
    const int selected = getSelection();
    const bool inside = selected > row && selected <= row + count;
    node->expanded = false;
    mRows.erase(mRows.begin() + row + 1, mRows.begin() + row + 1 + count);
    rowsRemoved(row + 1, count);
    if (inside) {
        selectOnly(row);
        fireCommand(CommandListener::kSelectionChanged);
    }
}

bool FolderTree::selectPath(const CString& wanted) {
    std::string path = wanted.toUtf8();
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    // The deepest root that holds the path, then one folder a level down to it.
    Node* at = nullptr;
    for (const auto& root : mTop) {
        const std::string& base = root->path;
        const bool holds = path == base || base == "/" ||
                           (path.size() > base.size() && path.compare(0, base.size(), base) == 0 &&
                            path[base.size()] == '/');
        if (holds && (!at || base.size() > at->path.size())) at = root.get();
    }
    while (at && at->path != path) {
        const int row = rowOf(at);
        if (row < 0 || !expand(row)) return false;
        Node* next = nullptr;
        for (const auto& child : at->folders) {
            const std::string& base = child->path;
            if (path == base || (path.compare(0, base.size(), base) == 0 && path[base.size()] == '/'))
                next = child.get();
        }
        at = next;
    }
    if (!at) return false;
    selectOnly(rowOf(at));
    return true;
}

CRect FolderTree::getExpanderRect(int row) const {
    const CRect rect = getRowRect(row);
    const int left = rect.left + 4 + getDepth(row) * kIndent;
    const int top = rect.top + (rect.height() - kExpanderSize) / 2;
    return CRect(left, top, left + kExpanderSize, top + kExpanderSize);
}

void FolderTree::paintRow(HDC dc, int row, const CRect& rect, bool selected, bool) {
    const CRect box = getExpanderRect(row);
    if (mayHaveChildren(row)) {
        // A box with a minus, or a plus while closed.
        const COLORREF line = Platform::getSysColor(COLOR_BTNSHADOW);
        dc->fillRect(box, Platform::getSysColor(COLOR_WINDOW));
        dc->frameRect(box, line);
        const int middle = box.top + kExpanderSize / 2;
        const int centre = box.left + kExpanderSize / 2;
        const COLORREF sign = WidgetLook::textColor(isEnabled());
        dc->fillRect(CRect(box.left + 2, middle, box.right - 2, middle + 1), sign);
        if (!isExpanded(row)) dc->fillRect(CRect(centre, box.top + 2, centre + 1, box.bottom - 2), sign);
    }
    CRect text(box.right + 6, rect.top, rect.right - 2, rect.bottom);
    dc->setTextColor(rowTextColor(selected));
    dc->drawText(mRows[row]->title, &text,
                 DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
}

bool FolderTree::onRowKey(int virtualKey) {
    const int row = getFocusRow();
    if (row < 0) return false;
    switch (virtualKey) {
        case VK_RIGHT:
            if (!isExpanded(row)) {
                expand(row);
            } else if (row + 1 < getRowCount()) {
                selectOnly(row + 1);
                fireCommand(CommandListener::kSelectionChanged);
            }
            return true;
        case VK_LEFT:
            if (isExpanded(row)) {
                collapse(row);
            } else if (Node* parent = mRows[row]->parent) {
                selectOnly(rowOf(parent));
                fireCommand(CommandListener::kSelectionChanged);
            }
            return true;
        default:
            return false;
    }
}

// '+' and '-' (of either keyboard) open and close rather than search.
bool FolderTree::onChar(char16_t c) {
    if (c == u'+') expand(getFocusRow());
    if (c == u'-') collapse(getFocusRow());
    if (c == u'+' || c == u'-') return true;
    return ListControl::onChar(c);
}

bool FolderTree::onRowPress(int row, CPoint point) {
    const CRect box = getExpanderRect(row);
    const CRect grip(box.left - 3, getRowRect(row).top, box.right + 3, getRowRect(row).bottom);
    if (!mayHaveChildren(row) || !grip.contains(point)) return false;
    if (isExpanded(row))
        collapse(row);
    else
        expand(row);
    return true;
}

void FolderTree::activate(int row) {
    if (row < 0 || row >= getRowCount()) return;
    if (isExpanded(row))
        collapse(row);
    else
        expand(row);
    ListControl::activate(row);
}

}  // namespace Orvanta
