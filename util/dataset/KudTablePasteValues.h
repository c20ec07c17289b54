#pragma once

#include <util/dataset/KudTablePaste.h>

#include <basic/data/HbdAVariable.h>

/// The cells of one column of a block, in the form that a variable stores, and what keeps it from
/// taking some of them.
class KudTablePaste::Values
{
public:
    /// The block outlives this, the column only its making.
    Values(const KudTableBlock& block, int source, const HbdAVariable& target);

    /// Of the variable's kind, a value for each row of the block.
    const HbdAVariable& get() const { return *m_values; }

    /// Why the variable does not take the cell, for people; null when it does.
    QString getProblem(int row) const;

    /// What the samples of a range become when they take the rows of these places, which are in
    /// the order of ranks; between them they stay as they are.
    std::unique_ptr<HbdAVariable> makePiece(const HbdAVariable& current,
                                            const HbiIntervalIntSmall& range, const Place* first,
                                            const Place* last) const;

private:
    enum Problem : quint8 {
        NONE,
        NOT_A_NUMBER,
        NOT_OF_SINGLE_PRECISION,
        NOT_AN_INTEGER,
        NOT_A_CATEGORY,
        NOT_A_DATE,
        NOT_A_COLOUR,
        NOT_A_SELECTION,
        NOT_AN_OPACITY,
        TOO_LARGE,
        OTHER_UNIT
    };

    void takeNumbers(const HbdAVariable& source, const HbdAVariable& target);
    void takeCategories(const HbdAVariable& source, const HbdAVariable& target);
    void takeRendered(const HbdAVariable& source, const HbdAVariable& target);
    void takeTexts(const KudTableBlock& block, int source, const HbdAVariable& target);
    void startFrom(const HbdAVariable& target);
    void storeTexts(int firstRow, const QVariant* texts, int count);
    Problem problemOf(const QVariant& edited, bool isUndefined) const;
    void setProblem(int row, Problem problem);

    int m_rowCount;
    const HbdAVariable* m_values;
    std::unique_ptr<HbdAVariable> m_own; // where the block's are of no use as they are
    std::vector<Problem> m_problems;     // none at all when it is empty
};
