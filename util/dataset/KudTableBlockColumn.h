#pragma once

#include <QtCore/QChar>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

class HbdAVariable;
class QAbstractItemModel;

/// The cells of some samples in one form, one after the other.
class KudTableBlockCells
{
public:
    struct Cell {
        std::size_t end;
        bool isSpecial; ///< has characters that texts or HTML must quote
    };

    void clear();
    /// A text of unknown characters.
    void append(std::string_view text);
    /// What needs no quotes.
    void appendPlain(std::string_view text);

    std::string_view at(int i) const
    {
        const auto place = static_cast<std::size_t>(i);
        const std::size_t begin = i == 0 ? 0 : m_cells[place - 1].end;
        return std::string_view(m_bytes).substr(begin, m_cells[place].end - begin);
    }
    bool isSpecial(int i) const { return m_cells[static_cast<std::size_t>(i)].isSpecial; }

private:
    std::string m_bytes;
    std::vector<Cell> m_cells;
};

/// One column of what is copied. It renders its cells for many samples at once, with one virtual
/// call: as people and spreadsheets read them (numbers in the unit shown, with all their digits;
/// nothing for an undefined cell) and in our own form.
class KudTableBlockColumn
{
public:
    virtual ~KudTableBlockColumn();

    /// Of a column of a table; `decimal` is the sign of reals in the texts.
    static std::unique_ptr<KudTableBlockColumn> create(const HbdAVariable& column, QChar decimal);

    /// Of a model that rests on no table: its display texts.
    static std::unique_ptr<KudTableBlockColumn> create(const QAbstractItemModel& model, int column);

    /// Renders the cells of these ranks (of these rows for a model); -1 is undefined.
    virtual void render(const int* ranks, int count) = 0;

    const KudTableBlockCells& getTexts() const { return m_texts; }
    const KudTableBlockCells& getOwn() const { return m_isOwnText ? m_texts : m_own; }

protected:
    KudTableBlockCells m_texts;
    KudTableBlockCells m_own;
    bool m_isOwnText = false; ///< both forms are the same
};
