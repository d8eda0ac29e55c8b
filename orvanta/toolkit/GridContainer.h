#pragma once
// GridContainer: children in the cells of a grid of rows and columns, each row and column sized by a
// sizing: kFlexible (−1) shares what is left, kFit (−2) is as large as its largest child needs (the
// child's layout size, its fixed or else its minimum size, plus its margins on that axis), a value
// in [0, 1) is that fraction of the space available (the product taken in the sizing's own float
// precision, then truncated), and 1 or more a fixed size in pixels (truncated).
//
// Contract:
//  - Sizes on one axis: available = the content size less the gaps between rows (columns); fractions
//    are of that, not of what remains; what remains after fractions, fits and pixels is shared among
//    the flexible ones in order by integer division, so the later ones get the extra pixels (10 over
//    three: 3, 3, 4). When nothing remains they get 0 and nothing is scaled down: the grid overflows.
//    Rows are computed first, then columns.
//  - A layout computes both axes, makes the grid's minimum size what its rows and columns need (so a
//    grid inside a fitting cell of another grid is sized by its content), then places each child in
//    its cell less the cell padding by its alignment, stretched and clamped except along a fit row
//    or column.
//  - A child added to a cell replaces the one there; a child with no size of its own (minimum
//    (1, 1)) gets the minimum 7 in each such direction, and an unset alignment fills the cell along
//    that axis. add without a cell puts the child after the last occupied cell in row order, at the
//    start of the next row past the last column. A cell past the last row or column grows the grid.
//  - Shrinking the grid removes the children outside it (the grid lets go of them).
//  - enableDebugBorders(true) makes every grid made afterwards draw its borders and gaps one pixel
//    wide in red, to show the cells while a screen is designed.

#include <map>
#include <utility>
#include <vector>

#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class GridContainer : public Container {
public:
    static constexpr float kFlexible = -1.0f;
    static constexpr float kFit = -2.0f;

    static GridContainer* create(int rows = 1, int cols = 1, bool tabStop = false);
    static void enableDebugBorders(bool enable);

    int getRows() const { return mRows; }
    int getCols() const { return mCols; }
    virtual void setRows(int rows);
    virtual void setCols(int cols);
    virtual void addRows(int count);
    virtual void addCols(int count);
    // Adds one row (column) and answers its index.
    virtual int appendRow();
    virtual int appendCol();
    void add(Control* child, bool tabStop = false) override;
    virtual void add(Control* child, int row, int col, bool tabStop = false);
    void remove(Control* child) override;
    virtual void setCellPadding(int padding);
    int getCellPadding() const { return mCellPadding; }
    virtual int getColWidth(int col) const;
    virtual void setColSpec(int col, double sizing);
    float getColSpec(int col) const;
    // Gives every child of a column (row) this alignment.
    virtual void setCellAlignCol(int col, int horizontal, int vertical);
    virtual int getRowHeight(int row) const;
    virtual void setRowSpec(int row, double sizing);
    float getRowSpec(int row) const;
    virtual void setCellAlignRow(int row, int horizontal, int vertical);
    virtual Control* getChild(int row, int col) const;

    void layoutChild(Control* child) override;
    void layout() override;
    void paintBackground(HDC dc) override;

protected:
    GridContainer(int rows, int cols, bool tabStop);
    void computeSizes(bool rows);

private:
    using Cell = std::pair<int, int>;  // (row, col)

    bool findCell(const Control* child, Cell* cell) const;
    void removeOutside();

    int mCols;
    int mRows;
    int mCellPadding = 0;
    std::map<Cell, Control*> mCells;
    std::vector<float> mRowSpecs;
    std::vector<float> mColSpecs;
    std::vector<int> mRowHeights;
    std::vector<int> mColWidths;
    bool mDebugBorders;
};

}  // namespace Orvanta
