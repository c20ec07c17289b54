#pragma once

#include <util/dataset/KudTableBlock.h>

#include <basic/data/HbdAVariable.h>

#include <QtCore/QBitArray>

/// The cells of a block; private to its source files.
struct KudTableBlock::Data {
    /// A part of `text`.
    struct Cell {
        int begin;
        int size;
    };

    bool isTyped = false;
    int rowCount = 0;
    int columnCount = 0;

    // Typed. A column without gaps has no bits.
    std::vector<std::unique_ptr<HbdAVariable>> columns;
    std::vector<QBitArray> gaps;

    // Text.
    QString text;
    std::vector<Cell> cells;
    std::vector<int> rowEnds; // into `cells`

    const HbdAVariable& values(int column) const { return *columns[std::size_t(column)]; }

    int rowBegin(int row) const { return row == 0 ? 0 : rowEnds[std::size_t(row - 1)]; }
    int rowSize(int row) const
    {
        return isTyped ? columnCount : rowEnds[std::size_t(row)] - rowBegin(row);
    }

    /// Null beyond the end of the row.
    const Cell* cell(int row, int column) const
    {
        return column < rowSize(row) ? &cells[std::size_t(rowBegin(row) + column)] : nullptr;
    }

    /// HbeUserError for too many.
    static void checkCount(qint64 cellCount);
};
