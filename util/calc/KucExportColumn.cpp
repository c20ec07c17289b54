#include <util/calc/KucExportColumn.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableText.h>

#include <algorithm>

KucExportColumn::KucExportColumn(const HbdAVariable& values, const HbuUnitTransfo& conversion,
                                 const HbbEFormat& format, int precision)
    : m_values(&values)
    , m_converts(conversion.isValid() && !conversion.isIdentity())
    , m_conversion(conversion)
    , m_format(format)
    , m_precision(precision)
{
    takeValues();
}

KucExportColumn::KucExportColumn(const double* rowValues, const HbuUnitTransfo& conversion,
                                 const HbbEFormat& format, int precision)
    : m_values(nullptr)
    , m_data(rowValues)
    , m_kind(Kind::REAL)
    , m_storage(Storage::REAL)
    , m_converts(conversion.isValid() && !conversion.isIdentity())
    , m_conversion(conversion)
    , m_format(format)
    , m_precision(precision)
{
}

void KucExportColumn::takeValues()
{
    const auto take = [this](const auto& variable, Kind kind, Storage storage) {
        m_data = variable.getValues().data();
        m_kind = kind;
        m_storage = storage;
    };
    switch (m_values->getType().toEnum()) {
    case HbdEVarType::E_REAL:
        return take(static_cast<const HbdVariableReal&>(*m_values), Kind::REAL, Storage::REAL);
    case HbdEVarType::E_REAL_32:
        return take(static_cast<const HbdVariableReal32&>(*m_values), Kind::REAL, Storage::REAL_32);
    case HbdEVarType::E_INTEGER:
        return take(static_cast<const HbdVariableInteger&>(*m_values),
                    m_converts ? Kind::REAL : Kind::INTEGER, Storage::INTEGER);
    case HbdEVarType::E_TEXT:
        return take(static_cast<const HbdVariableText&>(*m_values), Kind::TEXT, Storage::OTHER);
    case HbdEVarType::E_CATEGORY:
        take(static_cast<const HbdVariableEnum&>(*m_values), Kind::CATEGORY, Storage::OTHER);
        return takeLabels();
    default:
        return;
    }
}

void KucExportColumn::takeLabels()
{
    const auto& categories =
        static_cast<const HbdVariableEnum&>(*m_values).getCatalog().getCategories();
    std::size_t count = 0;
    for (const HbdEnumCatalog::Category& category : categories)
        count = std::max(count, std::size_t(category.code) + 1);
    m_labels.resize(count + 1);
    for (const HbdEnumCatalog::Category& category : categories)
        m_labels[category.code] = {category.label, category.label.toUtf8()};
}

bool KucExportColumn::read(int place, QVariant& value) const
{
    switch (m_kind) {
    case Kind::REAL: {
        const double number = getReal(place);
        if (HbbGlobal::isUndefined(number))
            return false;
        value.setValue(number);
        return true;
    }
    case Kind::INTEGER: {
        const qint64 number = getInteger(place);
        if (HbbGlobal::isUndefined(number))
            return false;
        value.setValue(number);
        return true;
    }
    case Kind::TEXT: {
        const QString& text = getText(place);
        if (text.isNull())
            return false;
        value.setValue(text);
        return true;
    }
    case Kind::CATEGORY:
        value = getLabel(place).text;
        return true;
    case Kind::OTHER:
        break;
    }
    const QVariant other = m_values->getVariant(place);
    if (!other.isValid())
        return false;
    value = other;
    return true;
}
