#include "KuuCoordSystemProj.h"

#include <util/extern/KueProj4Definition.h>

#include <basic/base/HbbGlobal.h>

namespace
{
using KuuCoordSystemProj::PjPointer;

/// The database compares codes as numbers where it can: it finds 2154 for " 2154", "02154" and
/// "2154.0", too, which are no codes.
bool isSpeltAsCode(const QString& code)
{
    const double number = HbbGlobal::convertString(code, HbbGlobal::D_FFFF);
    return HbbGlobal::isUndefined(number) || code == QString::number(number, 'f', 0);
}

PjPointer createFromCode(QLatin1String authority, const QString& code)
{
    if (!isSpeltAsCode(code) || code.contains(QChar(QChar::Null)))
        return nullptr;
    return PjPointer(proj_create_from_database(KuuCoordSystemProj::context(), authority.data(),
                                               code.toUtf8().constData(), PJ_CATEGORY_CRS, 0,
                                               nullptr));
}

PjPointer createFromDefinition(const KueProj4Definition& definition)
{
    if (!definition.isValid())
        return nullptr;
    // Without the type, PROJ would make an operation of it, not a coordinate system.
    QString text = definition.getText();
    if (!definition.hasParameter(QStringLiteral("type")))
        text += QLatin1String(" +type=crs");
    return PjPointer(proj_create(KuuCoordSystemProj::context(), text.toUtf8().constData()));
}
} // namespace

namespace KuuCoordSystemProj
{
const QLatin1String EPSG("EPSG");
const QLatin1String IGNF("IGNF");

PJ_CONTEXT* context()
{
    struct Owner {
        PJ_CONTEXT* context = proj_context_create();
        Owner()
        {
            proj_log_level(context, PJ_LOG_NONE);
            proj_context_set_enable_network(context, 0);
            proj_context_use_proj4_init_rules(context, 1); // "+init=epsg:…" in old definitions
        }
        ~Owner() { proj_context_destroy(context); }
    };
    thread_local const Owner owner;
    return owner.context;
}

Listener::Listener()
{
    proj_log_func(context(), this, &Listener::hear);
    proj_log_level(context(), PJ_LOG_ERROR);
}

Listener::~Listener()
{
    proj_log_level(context(), PJ_LOG_NONE);
    proj_log_func(context(), nullptr, [](void*, int, const char*) {});
}

void Listener::hear(void* listener, int level, const char* message)
{
    if (level == PJ_LOG_ERROR)
        static_cast<Listener*>(listener)->m_reason = QString::fromUtf8(message).trimmed();
}

QString Listener::getReason() const
{
    return m_reason;
}

PjPointer createCrs(const QString& text)
{
    for (const QLatin1String authority : {EPSG, IGNF}) {
        const QString prefix = authority + QLatin1Char(':');
        if (text.startsWith(prefix))
            return createFromCode(authority, text.mid(prefix.size()));
    }
    return createFromDefinition(KueProj4Definition(text));
}

PjPointer withoutVertical(PjPointer crs)
{
    while (crs && proj_get_type(crs.get()) == PJ_TYPE_COMPOUND_CRS)
        crs.reset(proj_crs_get_sub_crs(context(), crs.get(), 0));
    return crs;
}

PjPointer horizontalPart(PjPointer crs)
{
    while (crs) {
        switch (proj_get_type(crs.get())) {
        case PJ_TYPE_GEOGRAPHIC_2D_CRS:
        case PJ_TYPE_GEOGRAPHIC_3D_CRS:
        case PJ_TYPE_PROJECTED_CRS:
            return crs;
        case PJ_TYPE_COMPOUND_CRS:
            crs = withoutVertical(std::move(crs));
            break;
        case PJ_TYPE_BOUND_CRS:
            crs.reset(proj_get_source_crs(context(), crs.get()));
            break;
        default:
            return nullptr;
        }
    }
    return nullptr;
}

double axisFactor(const PJ* crs, int axis, QString* unitName)
{
    const PjPointer axes(proj_crs_get_coordinate_system(context(), crs));
    double factor = 0.;
    const char* name = nullptr;
    if (!axes || axis >= proj_cs_get_axis_count(context(), axes.get()) ||
        !proj_cs_get_axis_info(context(), axes.get(), axis, nullptr, nullptr, nullptr, &factor,
                               &name, nullptr, nullptr))
        return 0.;
    if (unitName)
        *unitName = QString::fromUtf8(name);
    return factor;
}
} // namespace KuuCoordSystemProj
