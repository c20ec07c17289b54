#include <util/dataset/KudSelector.h>
#include <util/dataset/KudTableMemento.h>
#include <util/utils/KuuMementoBytes.h>
#include <util/utils/KuuMementoFields.h>

#include "KudColumnBytes.h"
#include "KudUnitCodec.h"

#include <basic/data/HbdDataTable.h>
#include <basic/data/HbdVariableEnum.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QBitArray>
#include <QtCore/QCoreApplication>

template <>
struct KuuMementoCodec<HbbTags> {
    static QVariant encode(const HbbTags& tags) { return tags.toStringList(); }
    static bool decode(const QVariant& variant, HbbTags& tags)
    {
        QStringList texts;
        if (!KuuMementoCodec<QStringList>::decode(variant, texts))
            return false;
        tags = HbbTags(texts);
        return true;
    }
};

namespace
{
QString tr(const char* text)
{
    return QCoreApplication::translate("KudTableMemento", text);
}

const KuuMementoFields<HbdVariableDetails>& detailFields()
{
    using Details = HbdVariableDetails;
    static const KuuMementoFields<Details> rows = {
        {"name", &Details::name},
        {"type", &Details::type},
        {"role", &Details::role},
        {"support", &Details::support},
        {"tags", &Details::tags},
        {"unit", &Details::unit},
        {"displayUnit", &Details::displayUnit},
        {"format", &Details::format},
        {"automaticFormat", &Details::automaticFormat},
        {"precision", &Details::precision},
        {"width", &Details::width},
        {"catalogId", &Details::catalogId},
        {"colorScaleId", &Details::colorScaleId},
    };
    return rows;
}

/// The least significant bit of the first byte is that of the first sample.
std::size_t bytesOfBits(int count)
{
    return (static_cast<std::size_t>(count) + 7) / 8;
}

QVariantMap catalogToMap(const HbdEnumCatalog& catalog)
{
    QVariantList categories;
    for (const HbdEnumCatalog::Category& category : catalog.getCategories()) {
        QVariantMap map{{QStringLiteral("code"), int(category.code)},
                        {QStringLiteral("label"), category.label}};
        if (category.color.isValid())
            map.insert(QStringLiteral("color"), category.color);
        categories.append(map);
    }
    return {{QStringLiteral("id"), catalog.getId()},
            {QStringLiteral("undefinedColor"), catalog.getUndefinedColor()},
            {QStringLiteral("categories"), categories}};
}

HbdEnumCatalog catalogFromMap(const QVariantMap& map)
{
    HbdEnumCatalog catalog;
    catalog.setId(map.value(QStringLiteral("id")).toString());
    QColor undefinedColor;
    if (KuuMementoCodec<QColor>::decode(map.value(QStringLiteral("undefinedColor")),
                                        undefinedColor))
        catalog.setUndefinedColor(undefinedColor);
    for (const QVariant& entry : map.value(QStringLiteral("categories")).toList()) {
        const QVariantMap category = entry.toMap();
        int code = -1;
        const bool isCode =
            KuuMementoCodec<int>::decode(category.value(QStringLiteral("code")), code) &&
            code >= 0 && code < HbdEnumCatalog::UNDEFINED_CODE;
        QColor color;
        const QVariant savedColor = category.value(QStringLiteral("color"));
        if (savedColor.isValid())
            KuuMementoCodec<QColor>::decode(savedColor, color);
        const QString label = category.value(QStringLiteral("label")).toString();
        if (!isCode || !catalog.addCategory(static_cast<quint16>(code), label, color))
            throw HbeUserError(tr("Its category '%1' is not valid.").arg(label));
    }
    return catalog;
}

QVariantMap columnToMap(const HbdAVariable& variable)
{
    QVariantMap map;
    detailFields().build(variable.getDetails(), map);
    if (!variable.getIndex().isEmpty())
        map.insert(QStringLiteral("index"), variable.getIndex());
    if (!variable.getComponent().isEmpty())
        map.insert(QStringLiteral("component"), variable.getComponent());
    if (const auto* categories = dynamic_cast<const HbdVariableEnum*>(&variable))
        map.insert(QStringLiteral("catalog"), catalogToMap(categories->getCatalog()));
    map.insert(QStringLiteral("values"), KudColumnBytes::encode(variable));
    return map;
}

std::unique_ptr<HbdAVariable> columnFromMap(const QVariantMap& map, int sampleCount)
{
    HbdVariableDetails details;
    const QString type = map.value(QStringLiteral("type")).toString();
    if (!HbdEVarType::existsKey(type))
        throw HbeUserError(tr("Its type '%1' is not known.").arg(type));
    detailFields().restore(details, map, map.value(QStringLiteral("name")).toString());

    std::unique_ptr<HbdAVariable> variable = HbdAVariable::create(details);
    variable->setRealization(map.value(QStringLiteral("index")).toString());
    variable->setComponent(map.value(QStringLiteral("component")).toString());
    if (auto* categories = dynamic_cast<HbdVariableEnum*>(variable.get()))
        categories->setCatalog(catalogFromMap(map.value(QStringLiteral("catalog")).toMap()));
    KudColumnBytes::decode(map.value(QStringLiteral("values")).toByteArray(), sampleCount,
                           *variable);
    return variable;
}
} // namespace

QVariantMap KudTableMemento::toMap(const HbdDataTable& table)
{
    QVariantList variables;
    for (int i = 0; i < table.getVariableCount(); ++i) {
        if (!table.getVariableAt(i)->getDetails().temporary)
            variables.append(columnToMap(*table.getVariableAt(i)));
    }
    return {{QStringLiteral("sampleCount"), table.getSampleCount()},
            {QStringLiteral("variables"), variables}};
}

HbdDataTable KudTableMemento::fromMap(const QVariantMap& map)
{
    int sampleCount = -1;
    if (!KuuMementoCodec<int>::decode(map.value(QStringLiteral("sampleCount")), sampleCount) ||
        sampleCount < 0)
        throw HbeUserError(tr("The number of samples of the table is not valid."));

    HbdDataTable table;
    table.setSampleCount(sampleCount);
    for (const QVariant& entry : map.value(QStringLiteral("variables")).toList()) {
        const QVariantMap column = entry.toMap();
        const QString name = column.value(QStringLiteral("name")).toString();
        try {
            if (table.addVariable(columnFromMap(column, sampleCount)) == nullptr)
                throw HbeUserError(tr("Its name is empty or taken."));
        } catch (const HbeError& error) {
            throw HbeUserError(
                tr("Cannot read the variable '%1': %2").arg(name, error.getMessage()));
        } catch (const std::bad_alloc&) {
            throw HbeUserError(tr("Cannot read the variable '%1': %2")
                                   .arg(name, tr("There is not enough memory for its values.")));
        }
    }
    return table;
}

void KudTableMemento::addMask(const KudSelector& mask, QVariantMap& map)
{
    if (!mask.hasSelection())
        return;
    const QBitArray bits = mask.getBitArray();
    map.insert(QStringLiteral("mask"),
               KuuMementoBytes::pack(bits.bits(), bytesOfBits(bits.size())));
}

QBitArray KudTableMemento::getMask(const QVariantMap& map, int sampleCount)
{
    const QVariant saved = map.value(QStringLiteral("mask"));
    if (!saved.isValid())
        return QBitArray();
    try {
        const KuuMementoBytes packed(saved.toByteArray());
        const std::size_t expected = bytesOfBits(sampleCount);
        if (packed.getSize() != expected)
            throw HbeUserError(
                tr("Its values take %1 bytes instead of %2.").arg(packed.getSize()).arg(expected));
        std::vector<char> bytes(expected);
        packed.unpack(bytes.data());
        return QBitArray::fromBits(bytes.data(), sampleCount);
    } catch (const HbeError& error) {
        throw HbeUserError(tr("Cannot read the mask: %1").arg(error.getMessage()));
    }
}
