#pragma once

#include <basic/base/HbbExport.h>

#include <QtCore/QSharedDataPointer>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>

class HbdEnumCatalogData;

/// The categories of an enumerated variable: code, label and colour each, in the order they were
/// added. Codes run from 0 to 65534; labels are unique. A value that is copied in O(1).
class KELVANE_BASIC_EXPORT HbdEnumCatalog
{
public:
    /// Stored in a column where no category is known.
    static constexpr quint16 UNDEFINED_CODE = 0xFFFF;

    struct Category {
        quint16 code = UNDEFINED_CODE;
        QString label;
        QColor color;

        bool operator==(const Category& other) const
        {
            return code == other.code && label == other.label && color == other.color;
        }
    };

    HbdEnumCatalog();
    HbdEnumCatalog(const HbdEnumCatalog& other);
    HbdEnumCatalog& operator=(const HbdEnumCatalog& other);
    ~HbdEnumCatalog();

    /// The identifier that variables with these categories carry; may be empty.
    QString getId() const;
    void setId(const QString& id);

    bool isEmpty() const;
    int getCount() const;
    const QVector<Category>& getCategories() const;

    /// False, and nothing is added, when the code or the label is taken, or the code is
    /// UNDEFINED_CODE. An invalid colour takes the undefined one when it is asked for.
    bool addCategory(quint16 code, const QString& label, const QColor& color = QColor());

    /// The code of the label; a new label gets the code above all codes, or else a free one.
    /// UNDEFINED_CODE when all codes are taken.
    quint16 findOrAdd(const QString& label);

    bool containsCode(quint16 code) const;
    bool containsLabel(const QString& label) const;

    /// The label, or a null text for an unknown code. O(1).
    QString getLabel(quint16 code) const;

    /// The code, or UNDEFINED_CODE. O(1).
    quint16 getCode(const QString& label) const;

    /// The category's colour, or the undefined colour.
    QColor getColor(quint16 code) const;
    QColor getUndefinedColor() const;
    void setUndefinedColor(const QColor& color);

    bool operator==(const HbdEnumCatalog& other) const;
    bool operator!=(const HbdEnumCatalog& other) const { return !(*this == other); }

private:
    QSharedDataPointer<HbdEnumCatalogData> m_data;
};
