#pragma once

#include <QtCore/QString>

#include <memory>
#include <proj.h>

/// The PROJ library as this module uses it: a context for each thread, owned objects, systems made
/// from our texts. Objects belong to the thread that made them.
namespace KuuCoordSystemProj
{
extern const QLatin1String EPSG;
extern const QLatin1String IGNF;

struct PjDeleter {
    void operator()(PJ* object) const { proj_destroy(object); }
};
using PjPointer = std::unique_ptr<PJ, PjDeleter>;

/// The calling thread's; without network. It lives as long as the thread: what is kept with it in
/// thread-local storage must ask for it first, so that it goes before it.
PJ_CONTEXT* context();

/// Hears why PROJ refuses something while it lives; PROJ's log is silent otherwise, as most
/// refusals are ordinary answers.
class Listener
{
public:
    Listener();
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// PROJ's last complaint, in its own words; empty when it made none.
    QString getReason() const;

private:
    static void hear(void* listener, int level, const char* message);

    QString m_reason;
};

/// `text` is "AUTHORITY:CODE" with one of our authorities, or a PROJ.4 definition. Null when PROJ
/// does not know it.
PjPointer createCrs(const QString& text);

/// What places points of it in the plane: the system without a vertical part. A datum shift that
/// comes with it (a bound system) stays. Null where there is no such part.
PjPointer withoutVertical(PjPointer crs);
/// Likewise, without datum shift: a geographic or projected system, or null.
PjPointer horizontalPart(PjPointer crs);

/// The n-th axis: its unit, in radians or metres (0 where it has no such axis), and its name.
double axisFactor(const PJ* crs, int axis, QString* unitName = nullptr);
} // namespace KuuCoordSystemProj
