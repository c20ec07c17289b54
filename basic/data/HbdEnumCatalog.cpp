#include <basic/data/HbdEnumCatalog.h>

#include <QtCore/QHash>
#include <QtCore/QSharedData>

class HbdEnumCatalogData : public QSharedData
{
public:
    QString id;
    QVector<HbdEnumCatalog::Category> categories;
    QVector<int> rankByCode; // -1 where there is no category
    QHash<QString, int> rankByLabel;
    QColor undefinedColor{Qt::lightGray};

    int rank(quint16 code) const { return code < rankByCode.size() ? rankByCode.at(code) : -1; }
};

HbdEnumCatalog::HbdEnumCatalog()
    : m_data(new HbdEnumCatalogData)
{
}

HbdEnumCatalog::HbdEnumCatalog(const HbdEnumCatalog& other) = default;
HbdEnumCatalog& HbdEnumCatalog::operator=(const HbdEnumCatalog& other) = default;
HbdEnumCatalog::~HbdEnumCatalog() = default;

QString HbdEnumCatalog::getId() const
{
    return m_data->id;
}

void HbdEnumCatalog::setId(const QString& id)
{
    m_data->id = id;
}

bool HbdEnumCatalog::isEmpty() const
{
    return m_data->categories.isEmpty();
}

int HbdEnumCatalog::getCount() const
{
    return m_data->categories.size();
}

const QVector<HbdEnumCatalog::Category>& HbdEnumCatalog::getCategories() const
{
    return m_data->categories;
}

bool HbdEnumCatalog::addCategory(quint16 code, const QString& label, const QColor& color)
{
    if (code == UNDEFINED_CODE || containsCode(code) || containsLabel(label))
        return false;

    HbdEnumCatalogData& data = *m_data;
    const int rank = data.categories.size();
    while (data.rankByCode.size() <= code)
        data.rankByCode.append(-1);
    data.rankByCode[code] = rank;
    data.rankByLabel.insert(label, rank);
    data.categories.append({code, label, color});
    return true;
}

quint16 HbdEnumCatalog::findOrAdd(const QString& label)
{
    const quint16 known = getCode(label);
    if (known != UNDEFINED_CODE)
        return known;
    int code = m_data->rankByCode.size();
    if (code >= UNDEFINED_CODE)
        code = m_data->rankByCode.indexOf(-1); // the highest is taken: a gap will do
    if (code < 0)
        return UNDEFINED_CODE;
    addCategory(static_cast<quint16>(code), label);
    return static_cast<quint16>(code);
}

bool HbdEnumCatalog::containsCode(quint16 code) const
{
    return m_data->rank(code) >= 0;
}

bool HbdEnumCatalog::containsLabel(const QString& label) const
{
    return m_data->rankByLabel.contains(label);
}

QString HbdEnumCatalog::getLabel(quint16 code) const
{
    const int rank = m_data->rank(code);
    return rank < 0 ? QString() : m_data->categories.at(rank).label;
}

quint16 HbdEnumCatalog::getCode(const QString& label) const
{
    const int rank = m_data->rankByLabel.value(label, -1);
    return rank < 0 ? UNDEFINED_CODE : m_data->categories.at(rank).code;
}

QColor HbdEnumCatalog::getColor(quint16 code) const
{
    const int rank = m_data->rank(code);
    const QColor color = rank < 0 ? QColor() : m_data->categories.at(rank).color;
    return color.isValid() ? color : m_data->undefinedColor;
}

QColor HbdEnumCatalog::getUndefinedColor() const
{
    return m_data->undefinedColor;
}

void HbdEnumCatalog::setUndefinedColor(const QColor& color)
{
    m_data->undefinedColor = color;
}

bool HbdEnumCatalog::operator==(const HbdEnumCatalog& other) const
{
    return m_data == other.m_data ||
           (m_data->id == other.m_data->id && m_data->categories == other.m_data->categories &&
            m_data->undefinedColor == other.m_data->undefinedColor);
}
