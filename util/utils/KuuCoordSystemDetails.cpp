#include <util/utils/KuuCoordSystemDetails.h>

#include "KuuCoordSystemDomain.h"
#include "KuuCoordSystemProj.h"
#include "KuuCoordSystemProjKind.h"

#include <util/utils/KuuCoordSystem.h>
#include <util/utils/KuuCoordSystemService.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

using namespace KuuCoordSystemProj;

namespace
{
using Details = KuuCoordSystemDetails;
using Kind = Ku::CoordSystemKind;

struct ListDeleter {
    void operator()(PJ_OBJ_LIST* list) const { proj_list_destroy(list); }
};
using ListPointer = std::unique_ptr<PJ_OBJ_LIST, ListDeleter>;

QString nameOf(const PJ* object)
{
    return object ? QString::fromUtf8(proj_get_name(object)) : QString();
}

/// A system that comes with a datum shift (a bound one) is what it would be without.
PjPointer withoutShift(const PJ* crs)
{
    return PjPointer(proj_get_type(crs) == PJ_TYPE_BOUND_CRS ? proj_get_source_crs(context(), crs)
                                                             : proj_clone(context(), crs));
}

/// Of a system and of the parts of a compound one.
void addAxes(const PJ* crs, QVector<Details::Axis>& axes)
{
    if (proj_get_type(crs) == PJ_TYPE_COMPOUND_CRS) {
        for (int i = 0;; ++i) {
            const PjPointer part(proj_crs_get_sub_crs(context(), crs, i));
            if (!part)
                return;
            addAxes(part.get(), axes);
        }
    }
    const PjPointer plain = withoutShift(crs);
    const PjPointer system(plain ? proj_crs_get_coordinate_system(context(), plain.get())
                                 : nullptr);
    const int count = system ? proj_cs_get_axis_count(context(), system.get()) : 0;
    for (int i = 0; i < count; ++i) {
        const char* name = nullptr;
        const char* abbreviation = nullptr;
        const char* direction = nullptr;
        const char* unit = nullptr;
        if (proj_cs_get_axis_info(context(), system.get(), i, &name, &abbreviation, &direction,
                                  nullptr, &unit, nullptr, nullptr))
            axes.append({QString::fromUtf8(name), QString::fromUtf8(abbreviation),
                         QString::fromUtf8(direction), QString::fromUtf8(unit)});
    }
}

void setProjection(const PJ* horizontal, Details& details)
{
    if (proj_get_type(horizontal) != PJ_TYPE_PROJECTED_CRS)
        return;
    const PjPointer conversion(proj_crs_get_coordoperation(context(), horizontal));
    const char* method = nullptr;
    if (conversion &&
        proj_coordoperation_get_method_info(context(), conversion.get(), &method, nullptr, nullptr))
        details.method = QString::fromUtf8(method);
}

void setDatum(const PJ* horizontal, Details& details)
{
    const PjPointer geodetic(proj_crs_get_geodetic_crs(context(), horizontal));
    if (!geodetic)
        return;
    PjPointer datum(proj_crs_get_datum(context(), geodetic.get()));
    if (!datum)
        datum.reset(proj_crs_get_datum_ensemble(context(), geodetic.get()));
    details.datum = nameOf(datum.get());

    const PjPointer ellipsoid(proj_get_ellipsoid(context(), geodetic.get()));
    details.ellipsoid = nameOf(ellipsoid.get());
    if (ellipsoid)
        proj_ellipsoid_get_parameters(context(), ellipsoid.get(), &details.semiMajorAxis, nullptr,
                                      nullptr, &details.inverseFlattening);
    const PjPointer meridian(proj_get_prime_meridian(context(), geodetic.get()));
    details.primeMeridian = nameOf(meridian.get());
    double longitude = 0.;
    double toRadians = 0.;
    if (meridian && proj_prime_meridian_get_parameters(context(), meridian.get(), &longitude,
                                                       &toRadians, nullptr))
        details.primeMeridianLongitude = proj_todeg(longitude * toRadians);
}

QVector<Details::Other> toOthers(const PJ_OBJ_LIST* list, const PJ* equivalentTo = nullptr)
{
    QVector<Details::Other> others;
    const int count = list ? proj_list_get_count(list) : 0;
    for (int i = 0; i < count; ++i) {
        const PjPointer other(proj_list_get(context(), list, i));
        if (!other || (equivalentTo && (proj_is_deprecated(other.get()) ||
                                        !proj_is_equivalent_to_with_ctx(
                                            context(), other.get(), equivalentTo,
                                            PJ_COMP_EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS))))
            continue;
        others.append({QString::fromUtf8(proj_get_id_auth_name(other.get(), 0)) + QLatin1Char(':') +
                           QString::fromUtf8(proj_get_id_code(other.get(), 0)),
                       nameOf(other.get())});
    }
    return others;
}
} // namespace

KuuCoordSystemDetails KuuCoordSystemDetails::of(const KuuCoordSystem& system)
{
    KuuCoordSystemDetails details;
    details.name = system.getName();
    const Listener listener;
    QString text = KuuCoordSystemService::getInstance().csToProj4String(system);
    if (text.isEmpty())
        text = system.hasProj4() && !system.hasIgnfCode() && !system.hasEpsgCode()
                   ? system.getProj4().getText()
                   : system.serialize();
    PjPointer crs = createCrs(text);
    if (crs && !system.isValid()) {
        details.reason = QCoreApplication::translate("KuuCoordSystemDetails",
                                                     "It is neither geographic nor projected.");
        return details;
    }
    if (!crs) {
        // Without the name of PROJ's function: "proj_create: …".
        details.reason = listener.getReason();
        if (details.reason.startsWith(QLatin1String("proj_")))
            details.reason = details.reason.section(QStringLiteral(": "), 1);
        return details;
    }
    details.isKnown = true;
    const PjPointer plain = withoutShift(crs.get());
    details.kind = plain ? toCoordSystemKind(proj_get_type(plain.get())) : Kind::UNKNOWN;
    details.scope = QString::fromUtf8(proj_get_scope(crs.get()));
    details.proj4 = system.getProj4().getText();
    details.isDeprecated = proj_is_deprecated(crs.get()) != 0;
    const char* const options[] = {"MULTILINE=YES", nullptr};
    details.wkt2 = QString::fromUtf8(proj_as_wkt(context(), crs.get(), PJ_WKT2_2019, options));
    addAxes(crs.get(), details.axes);
    details.area = readAreaOfUse(crs.get());
    if (details.isDeprecated)
        details.replacements =
            toOthers(ListPointer(proj_get_non_deprecated(context(), crs.get())).get());

    const PjPointer horizontal = horizontalPart(std::move(crs));
    if (horizontal) {
        setProjection(horizontal.get(), details);
        setDatum(horizontal.get(), details);
    }
    return details;
}

QVector<KuuCoordSystemDetails::Other>
KuuCoordSystemDetails::findEquivalents(const KuuCoordSystem& system)
{
    const PjPointer crs = createCrs(system.serialize());
    if (!system.isValid() || !crs || (!system.hasIgnfCode() && !system.hasEpsgCode()))
        return {};
    const QLatin1String authority = system.hasIgnfCode() ? EPSG : IGNF;
    const ListPointer list(proj_identify(context(), crs.get(), authority.data(), nullptr, nullptr));
    QVector<Other> others = toOthers(list.get(), crs.get());
    // PROJ does not look for all that it would find equivalent; this one is known.
    if (system.hasIgnfCode() && system.hasEpsgCode()) {
        const KuuCoordSystem own = KuuCoordSystem::createFromEpsg(system.getEpsgCode());
        const auto isOwn = [&own](const Other& other) { return other.text == own.serialize(); };
        others.erase(std::remove_if(others.begin(), others.end(), isOwn), others.end());
        if (own.isValid())
            others.prepend({own.serialize(), own.getName()});
    }
    return others;
}
