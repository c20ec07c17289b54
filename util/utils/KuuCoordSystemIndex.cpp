#include "KuuCoordSystemIndex.h"

#include "KuuCoordSystemProj.h"
#include "KuuCoordSystemProjKind.h"

#include <util/utils/KuuCoordSystemCatalogFile.h>
#include <util/utils/KuuCoordSystemService.h>

#include <QtCore/QHash>
#include <QtCore/QSet>

using Kind = Ku::CoordSystemKind;
using Mode = Ku::CoordSystemMode;

namespace
{
struct ParametersDeleter {
    void operator()(PROJ_CRS_LIST_PARAMETERS* parameters) const
    {
        proj_get_crs_list_parameters_destroy(parameters);
    }
};
struct ListDeleter {
    void operator()(PROJ_CRS_INFO** list) const { proj_crs_info_list_destroy(list); }
};

KuuCoordSystemSearch::Entry toEntry(const PROJ_CRS_INFO& info)
{
    KuuCoordSystemSearch::Entry entry;
    entry.authority = QString::fromUtf8(info.auth_name);
    entry.code = QString::fromUtf8(info.code);
    entry.name = QString::fromUtf8(info.name);
    entry.kind = toCoordSystemKind(info.type);
    entry.isDeprecated = info.deprecated != 0;
    if (info.bbox_valid)
        entry.area = KuuCoordSystemArea::fromBox(info.west_lon_degree, info.south_lat_degree,
                                                 info.east_lon_degree, info.north_lat_degree);
    entry.area.name = QString::fromUtf8(info.area_name);
    return entry;
}

/// Letters that Unicode does not take apart.
QString letterOf(QChar letter)
{
    switch (letter.unicode()) {
    case 0x00E6:
        return QStringLiteral("ae");
    case 0x00F8:
        return QStringLiteral("o");
    case 0x0111:
    case 0x00F0:
        return QStringLiteral("d");
    case 0x0131:
        return QStringLiteral("i");
    case 0x0142:
        return QStringLiteral("l");
    case 0x0153:
        return QStringLiteral("oe");
    default:
        return letter;
    }
}
} // namespace

QString KuuCoordSystemIndex::fold(const QString& text)
{
    QString folded;
    for (const QChar letter : text.normalized(QString::NormalizationForm_KD).toCaseFolded()) {
        if (letter.isLetterOrNumber())
            folded += letterOf(letter);
        else if (!letter.isMark() && !folded.isEmpty() && !folded.endsWith(QLatin1Char(' ')))
            folded += QLatin1Char(' ');
    }
    return folded.trimmed();
}

const KuuCoordSystemIndex& KuuCoordSystemIndex::getInstance()
{
    static const KuuCoordSystemIndex index;
    return index;
}

KuuCoordSystemIndex::KuuCoordSystemIndex()
{
    read(KuuCoordSystemProj::EPSG.data());
    read(KuuCoordSystemProj::IGNF.data());
    setModes();
    setCommon();
}

void KuuCoordSystemIndex::read(const char* authority)
{
    const std::unique_ptr<PROJ_CRS_LIST_PARAMETERS, ParametersDeleter> parameters(
        proj_get_crs_list_parameters_create());
    parameters->allow_deprecated = 1;
    int count = 0;
    const std::unique_ptr<PROJ_CRS_INFO*, ListDeleter> list(proj_get_crs_info_list_from_database(
        KuuCoordSystemProj::context(), authority, parameters.get(), &count));
    for (int i = 0; list && i < count; ++i) {
        const PROJ_CRS_INFO& info = *list.get()[i];
        if (toCoordSystemKind(info.type) == Kind::UNKNOWN)
            continue; // heights, geocentric coordinates
        Record record;
        record.entry = toEntry(info);
        record.name = fold(record.entry.name);
        record.joinedName = QString(record.name).remove(QLatin1Char(' '));
        record.area = fold(record.entry.area.name);
        record.code = record.entry.code.toLower();
        record.authority = record.entry.authority.toLower();
        record.size = record.entry.area.getSize();
        record.place = int(m_records.size());
        m_records.push_back(record);
    }
}

/// The list does not tell what a compound system's horizontal part is. Nearly all are named or
/// coded after it; PROJ is asked for the rest.
void KuuCoordSystemIndex::setModes()
{
    QHash<QString, Mode> known;
    const auto key = [](const Record& record, const QString& text) {
        return record.authority + QLatin1Char(':') + text;
    };
    for (Record& record : m_records) {
        if (record.entry.kind == Kind::COMPOUND)
            continue;
        record.entry.mode =
            record.entry.kind == Kind::PROJECTED ? Mode::PROJECTED : Mode::GEOGRAPHIC;
        known.insert(key(record, record.entry.name), record.entry.mode);
        known.insert(key(record, record.entry.code), record.entry.mode);
    }
    for (Record& record : m_records) {
        if (record.entry.kind != Kind::COMPOUND)
            continue;
        const QString name = record.entry.name.section(QStringLiteral(" + "), 0, 0);
        const QString code = record.entry.code.section(QLatin1Char('.'), 0, 0);
        auto found = known.constFind(key(record, name));
        if (found == known.constEnd())
            found = known.constFind(key(record, code));
        if (found != known.constEnd()) {
            record.entry.mode = *found;
            continue;
        }
        const KuuCoordSystemService& service = KuuCoordSystemService::getInstance();
        record.entry.mode = (record.entry.authority == KuuCoordSystemProj::EPSG
                                 ? service.describeEpsg(record.entry.code)
                                 : service.describeIgnf(record.entry.code))
                                .mode;
    }
}

void KuuCoordSystemIndex::setCommon()
{
    QSet<QString> common;
    for (const auto& system : KuuCoordSystemCatalogFile::getShipped().systems)
        common << QStringLiteral("EPSG:") + system.epsg << QStringLiteral("IGNF:") + system.ignf;
    for (Record& record : m_records)
        record.isCommon = common.contains(record.entry.getText());
}
