#pragma once
// ThumbnailCell: one cell of a ThumbnailControl's grid, a row and a column and nothing else (the
// grid keeps no object per cell). Cell() is the null cell (-1, -1).
//
// Contract: plain value; operator< orders by row, then column; operator- is the component-wise
// difference.

namespace Orvanta {

class ThumbnailCell {
public:
    ThumbnailCell() = default;
    ThumbnailCell(int row, int col) : row(row), col(col) {}

    bool isNull() const { return row == -1 && col == -1; }
    ThumbnailCell offset(int dRow, int dCol) const { return ThumbnailCell(row + dRow, col + dCol); }

    bool operator==(const ThumbnailCell& o) const { return row == o.row && col == o.col; }
    bool operator!=(const ThumbnailCell& o) const { return !(*this == o); }
    bool operator<(const ThumbnailCell& o) const { return row < o.row || (row == o.row && col < o.col); }
    ThumbnailCell operator-(const ThumbnailCell& o) const { return ThumbnailCell(row - o.row, col - o.col); }

    int row = -1;
    int col = -1;
};

}  // namespace Orvanta
