#include "KuuCoordSystemOperations.h"

#include <basic/base/HbbGlobal.h>
#include <basic/error/HbeUserError.h>

#include <algorithm>
#include <atomic>
#include <list>
#include <mutex>

using namespace KuuCoordSystemProj;
using Operation = KuuCoordSystemConverter::Operation;

namespace
{
struct ListDeleter {
    void operator()(PJ_OBJ_LIST* list) const { proj_list_destroy(list); }
};
using ListPointer = std::unique_ptr<PJ_OBJ_LIST, ListDeleter>;

bool hasHeights(const PJ* crs)
{
    const PJ_TYPE type = proj_get_type(crs);
    return type == PJ_TYPE_COMPOUND_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS;
}

/// Of the elevations, in metres.
double heightFactor(const PJ* crs)
{
    double factor = 0.;
    if (proj_get_type(crs) == PJ_TYPE_COMPOUND_CRS) {
        const PjPointer vertical(proj_crs_get_sub_crs(context(), crs, 1));
        factor = vertical ? axisFactor(vertical.get(), 0) : 0.;
    } else {
        factor = axisFactor(crs, 2);
    }
    return factor > 0. ? factor : 1.;
}

/// Projections are exact but for their series; PROJ states no accuracy for one alone.
bool isConversion(const PJ* operation)
{
    if (proj_get_type(operation) == PJ_TYPE_CONVERSION)
        return true;
    const int count = proj_get_type(operation) == PJ_TYPE_CONCATENATED_OPERATION
                          ? proj_concatoperation_get_step_count(context(), operation)
                          : 0;
    for (int i = 0; i < count; ++i) {
        const PjPointer step(proj_concatoperation_get_step(context(), operation, i));
        if (!step || !isConversion(step.get()))
            return false;
    }
    return count > 0;
}

double accuracyOf(const PJ* operation)
{
    const double accuracy = proj_coordoperation_get_accuracy(context(), operation);
    if (accuracy >= 0.)
        return accuracy;
    return isConversion(operation) ? 0. : HbbGlobal::D_FFFF;
}

QStringList missingGrids(const PJ* operation)
{
    QStringList missing;
    const int count = proj_coordoperation_get_grid_used_count(context(), operation);
    for (int i = 0; i < count; ++i) {
        const char* name = nullptr;
        int isAvailable = 0;
        if (proj_coordoperation_get_grid_used(context(), operation, i, &name, nullptr, nullptr,
                                              nullptr, nullptr, nullptr, &isAvailable) &&
            !isAvailable)
            missing.append(QString::fromUtf8(name));
    }
    return missing;
}

Operation describe(const PJ* operation, const KuuCoordSystemArea& area)
{
    Operation facts;
    facts.name = QString::fromUtf8(proj_get_name(operation));
    facts.accuracy = accuracyOf(operation);
    facts.areaName = area.name;
    if (area.isValid) {
        const double turn = area.west > area.east ? 360. : 0.;
        facts.area =
            QRectF(area.west, area.south, area.east + turn - area.west, area.north - area.south);
    }
    facts.isBallpark = proj_coordoperation_has_ballpark_transformation(context(), operation) != 0;
    facts.grids = missingGrids(operation);
    return facts;
}

/// All operations, found as PROJ's own conversions between two systems find theirs.
ListPointer findOperations(const PJ* from, const PJ* to, PROJ_GRID_AVAILABILITY_USE grids)
{
    PJ_OPERATION_FACTORY_CONTEXT* factory =
        proj_create_operation_factory_context(context(), nullptr);
    if (!factory)
        return nullptr;
    proj_operation_factory_context_set_spatial_criterion(
        context(), factory, PROJ_SPATIAL_CRITERION_PARTIAL_INTERSECTION);
    proj_operation_factory_context_set_grid_availability_use(context(), factory, grids);
    ListPointer list(proj_create_operations(context(), from, to, factory));
    proj_operation_factory_context_destroy(factory);
    return list;
}
} // namespace

/// One search of the database, with what it keeps of it.
class KuuCoordSystemOperations::Search
{
public:
    Search(const QString& from, const QString& to)
        : m_from(createCrs(from))
        , m_to(createCrs(to))
    {
        hasVertical = m_from && m_to && hasHeights(m_from.get()) && hasHeights(m_to.get());
        if (!hasVertical) {
            m_from = withoutVertical(std::move(m_from));
            m_to = withoutVertical(std::move(m_to));
        }
    }

    void run();
    QString getReason() const { return m_listener.getReason(); }

    /// With the facts of each; in the order of preference.
    struct Found {
        Operation facts;
        Candidate candidate; // without text where files are missing
        bool isFallback = false;
    };
    std::vector<Found> found;
    Side fromSide;
    Side toSide;
    bool hasVertical;

private:
    void describeSides(const KuuCoordSystemDomainProjector& from,
                       const KuuCoordSystemDomainProjector& to);
    void addUsable(const KuuCoordSystemDomainProjector& areas);
    void addMissing(const KuuCoordSystemDomainProjector& areas);
    void insert(Found operation);
    static bool isBetter(const Found& a, const Found& b);
    static Found read(const PJ* operation, const KuuCoordSystemDomainProjector& areas);

    Listener m_listener;
    PjPointer m_from;
    PjPointer m_to;
};

void KuuCoordSystemOperations::Search::run()
{
    if (!m_from || !m_to)
        return;
    const KuuCoordSystemDomainProjector fromAreas(m_from.get());
    const KuuCoordSystemDomainProjector toAreas(m_to.get());
    addUsable(fromAreas);
    if (found.empty())
        return;
    addMissing(fromAreas);
    describeSides(fromAreas, toAreas);
}

void KuuCoordSystemOperations::Search::describeSides(const KuuCoordSystemDomainProjector& from,
                                                     const KuuCoordSystemDomainProjector& to)
{
    // The edges of a projected area are sampled, and bulge between the samples.
    constexpr double BULGE = 0.005;
    const auto describeSide = [this](Side& side, const PjPointer& crs) {
        const PjPointer horizontal = horizontalPart(PjPointer(proj_clone(context(), crs.get())));
        side.planeFactor = axisFactor(horizontal.get(), 0);
        side.isGeographic = proj_get_type(horizontal.get()) != PJ_TYPE_PROJECTED_CRS;
        side.heightFactor = hasVertical ? heightFactor(crs.get()) : 1.;
        KuuCoordSystemArea area = readAreaOfUse(crs.get());
        return area.isValid ? area : readAreaOfUse(horizontal.get());
    };
    const KuuCoordSystemArea fromArea = describeSide(fromSide, m_from);
    const KuuCoordSystemArea toArea = describeSide(toSide, m_to);
    const double fromMargin = fromSide.isGeographic ? 0. : BULGE;
    const double toMargin = toSide.isGeographic ? 0. : BULGE;
    fromSide.ownArea = from.project(fromArea, fromMargin);
    fromSide.otherArea = from.project(toArea, fromMargin);
    toSide.ownArea = to.project(toArea, toMargin);
    toSide.otherArea = to.project(fromArea, toMargin);
}

KuuCoordSystemOperations::Search::Found
KuuCoordSystemOperations::Search::read(const PJ* operation,
                                       const KuuCoordSystemDomainProjector& areas)
{
    const KuuCoordSystemArea area = readAreaOfUse(operation);
    Found result;
    result.facts = describe(operation, area);
    Candidate& candidate = result.candidate;
    candidate.area = areas.project(area);
    candidate.accuracy = result.facts.accuracy;
    candidate.isBallpark = result.facts.isBallpark;
    candidate.needsGrids = proj_coordoperation_get_grid_used_count(context(), operation) > 0;
    candidate.isAtSea = area.name.contains(QLatin1String("- offshore"));
    return result;
}

void KuuCoordSystemOperations::Search::addUsable(const KuuCoordSystemDomainProjector& areas)
{
    const ListPointer list = findOperations(
        m_from.get(), m_to.get(), PROJ_GRID_AVAILABILITY_DISCARD_OPERATION_IF_MISSING_GRID);
    const int count = list ? proj_list_get_count(list.get()) : 0;
    bool hasFallback = false;
    for (int i = 0; i < count; ++i) {
        const PjPointer operation(proj_list_get(context(), list.get(), i));
        const PjPointer normalized(
            operation ? proj_normalize_for_visualization(context(), operation.get()) : nullptr);
        const char* text =
            normalized ? proj_as_proj_string(context(), normalized.get(), PJ_PROJ_5, nullptr)
                       : nullptr;
        if (!text)
            continue;
        const QByteArray pipeline(text);
        if (!PjPointer(proj_create(context(), pipeline.constData())))
            continue;
        Found result = read(operation.get(), areas);
        result.candidate.pipeline = pipeline;
        result.isFallback = !hasFallback && !result.candidate.needsGrids;
        hasFallback = hasFallback || result.isFallback;
        insert(std::move(result));
    }
}

/// The more accurate of two takes the points that both could take; of two equals, the one for the
/// smaller area. Areas on land come before those at sea, which reach ashore with their boxes.
bool KuuCoordSystemOperations::Search::isBetter(const Found& a, const Found& b)
{
    const double accuracyA = a.candidate.accuracy;
    const double accuracyB = b.candidate.accuracy;
    if (accuracyA == HbbGlobal::D_FFFF || accuracyB == HbbGlobal::D_FFFF || a.candidate.isAtSea)
        return false;
    if (accuracyA != accuracyB)
        return accuracyA < accuracyB;
    return b.candidate.area.contains(a.candidate.area) &&
           !a.candidate.area.contains(b.candidate.area);
}

void KuuCoordSystemOperations::Search::insert(Found operation)
{
    const auto place = std::find_if(found.begin(), found.end(), [&operation](const Found& other) {
        return isBetter(operation, other);
    });
    found.insert(place, std::move(operation));
}

/// Those that would be used, were their files here: nothing at least as accurate stands in for them
/// on all of their area.
void KuuCoordSystemOperations::Search::addMissing(const KuuCoordSystemDomainProjector& areas)
{
    const ListPointer list =
        findOperations(m_from.get(), m_to.get(), PROJ_GRID_AVAILABILITY_IGNORED);
    const int count = list ? proj_list_get_count(list.get()) : 0;
    std::vector<Found> missing;
    for (int i = 0; i < count; ++i) {
        const PjPointer operation(proj_list_get(context(), list.get(), i));
        if (!operation || missingGrids(operation.get()).isEmpty())
            continue;
        Found result = read(operation.get(), areas);
        const bool isNeeded =
            std::none_of(found.begin(), found.end(), [&result](const Found& other) {
                return other.candidate.accuracy <= result.candidate.accuracy &&
                       other.candidate.area.contains(result.candidate.area);
            });
        if (isNeeded && result.candidate.accuracy != HbbGlobal::D_FFFF)
            missing.push_back(std::move(result));
    }
    for (Found& operation : missing) {
        const auto place = std::find_if(found.begin(), found.end(), [&](const Found& other) {
            return other.candidate.accuracy > operation.candidate.accuracy;
        });
        found.insert(place, std::move(operation));
    }
}

KuuCoordSystemOperations::KuuCoordSystemOperations(const QString& from, const QString& to)
{
    static std::atomic<quint64> lastId{0};
    m_id = ++lastId;
    Search search(from, to);
    search.run();
    for (Search::Found& operation : search.found) {
        m_operations.append(operation.facts);
        if (operation.candidate.pipeline.isEmpty())
            continue;
        if (operation.isFallback)
            m_fallback = static_cast<int>(m_candidates.size());
        m_candidates.push_back(std::move(operation.candidate));
    }
    if (m_candidates.empty()) {
        const QString reason = search.getReason();
        throw HbeUserError(
            KuuCoordSystemConverter::tr("The PROJ library cannot convert from %1 to %2%3")
                .arg(from, to,
                     reason.isEmpty() ? QStringLiteral(".") : QStringLiteral(": ") + reason));
    }
    m_from = search.fromSide;
    m_to = search.toSide;
    m_hasVertical = search.hasVertical;
}

std::shared_ptr<const KuuCoordSystemOperations> KuuCoordSystemOperations::find(const QString& from,
                                                                               const QString& to)
{
    using Pointer = std::shared_ptr<const KuuCoordSystemOperations>;
    struct Entry {
        QString from;
        QString to;
        Pointer operations;
    };
    constexpr std::size_t LIMIT = 64;
    static std::mutex mutex;
    static std::list<Entry> cache; // the one used last stands first

    const auto look = [&]() -> Pointer {
        const auto known = std::find_if(cache.begin(), cache.end(), [&](const Entry& entry) {
            return entry.from == from && entry.to == to;
        });
        if (known == cache.end())
            return nullptr;
        cache.splice(cache.begin(), cache, known);
        return cache.front().operations;
    };
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (Pointer known = look())
            return known;
    }
    // Unlocked: a search may take a tenth of a second. Two threads may search for the same.
    Pointer operations = std::make_shared<const KuuCoordSystemOperations>(from, to);
    const std::lock_guard<std::mutex> lock(mutex);
    if (Pointer known = look())
        return known;
    cache.push_front({from, to, operations});
    if (cache.size() > LIMIT)
        cache.pop_back();
    return operations;
}

PJ* KuuCoordSystemOperations::getPipeline(int candidate) const
{
    struct Entry {
        quint64 id;
        std::vector<PjPointer> pipelines;
        std::vector<bool> isTried;
    };
    constexpr std::size_t LIMIT = 16; // files stay open with them
    context();                        // made before the list, so it goes after it
    thread_local std::list<Entry> entries;

    auto entry = std::find_if(entries.begin(), entries.end(),
                              [this](const Entry& known) { return known.id == m_id; });
    if (entry == entries.end()) {
        if (entries.size() == LIMIT)
            entries.pop_back();
        Entry fresh;
        fresh.id = m_id;
        fresh.pipelines.resize(m_candidates.size());
        fresh.isTried.resize(m_candidates.size());
        entries.push_front(std::move(fresh));
    } else if (entry != entries.begin()) {
        entries.splice(entries.begin(), entries, entry);
    }
    Entry& own = entries.front();
    const auto i = static_cast<std::size_t>(candidate);
    if (!own.isTried[i]) {
        own.isTried[i] = true;
        own.pipelines[i].reset(proj_create(context(), m_candidates[i].pipeline.constData()));
    }
    return own.pipelines[i].get();
}
