#pragma once

#include <util/KuExport.h>
#include <util/extern/KueFormatedVariant.h>

#include <basic/base/HbbGlobal.h>
#include <basic/unit/HbuUnitTransfo.h>

#include <QtCore/QByteArray>
#include <QtCore/QVariant>

#include <vector>

class HbdAVariable;

/// One variable of an export: its values, the conversion into the unit they are shown in, and how
/// numbers are written. The values are borrowed and must not be edited while the column is in use;
/// any thread may read it.
///
/// The values of most columns are those of all samples, and a cell's place among them is the rank
/// of its sample. A column that the export computes (converted coordinates) has the values of the
/// rows of the present block only; KucExportBlock::getPlace tells the place for both.
///
/// `read` gives any cell as a variant. An encoding that writes whole blocks asks for the kind once
/// and then takes the values themselves, by the function of that kind; both ways give the same.
class KELVANE_UTIL_EXPORT KucExportColumn
{
public:
    enum class Kind {
        REAL,     ///< getReal
        INTEGER,  ///< getInteger
        TEXT,     ///< getText
        CATEGORY, ///< getLabel
        OTHER     ///< read only
    };
    /// The name of a category; the variant is invalid for a code without category.
    struct Label {
        QVariant text;
        QByteArray utf8;
    };

    /// A conversion that is not valid leaves the values as they are.
    KucExportColumn(const HbdAVariable& values, const HbuUnitTransfo& conversion,
                    const HbbEFormat& format, int precision);

    /// The values of a block's rows, in a place that stays the same for all blocks.
    KucExportColumn(const double* rowValues, const HbuUnitTransfo& conversion,
                    const HbbEFormat& format, int precision);

    /// The values are those of the block's rows, not of all samples.
    bool isOfBlock() const { return m_values == nullptr; }

    /// An integer that is converted is a real.
    Kind getKind() const { return m_kind; }
    const HbbEFormat& getFormat() const { return m_format; }
    int getPrecision() const { return m_precision; }

    /// The cell's value; false, and the variant is left alone, where it is undefined. A category
    /// that is undefined or unknown is an invalid variant, and true.
    bool read(int place, QVariant& value) const;

    /// The converted value; see HbbGlobal::isUndefined.
    double getReal(int place) const
    {
        if (m_storage == Storage::REAL)
            return convert(static_cast<const double*>(m_data)[place]);
        if (m_storage == Storage::REAL_32)
            return convert(static_cast<double>(static_cast<const float*>(m_data)[place]));
        const qint64 value = getInteger(place);
        return HbbGlobal::isUndefined(value) ? HbbGlobal::D_FFFF
                                             : convert(static_cast<double>(value));
    }
    /// See HbbGlobal::isUndefined.
    qint64 getInteger(int place) const { return static_cast<const qint64*>(m_data)[place]; }
    /// Null where it is undefined.
    const QString& getText(int place) const { return static_cast<const QString*>(m_data)[place]; }
    /// Empty where there is no category.
    const Label& getLabel(int place) const
    {
        const std::size_t code = static_cast<const quint16*>(m_data)[place];
        return m_labels[code < m_labels.size() ? code : m_labels.size() - 1];
    }

private:
    enum class Storage { REAL, REAL_32, INTEGER, OTHER };

    double convert(double value) const { return m_converts ? m_conversion.apply(value) : value; }
    void takeValues();
    void takeLabels();

    const HbdAVariable* m_values; // borrowed; null for values of a block
    const void* m_data = nullptr; // the first of the values, in the type of their kind
    Kind m_kind = Kind::OTHER;
    Storage m_storage = Storage::OTHER;
    bool m_converts;
    HbuUnitTransfo m_conversion;
    HbbEFormat m_format;
    int m_precision;
    std::vector<Label> m_labels; // by code; the last is for codes without category
};
