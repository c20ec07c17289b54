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

    /// An operation, the most accurate one first; without candidate where its files are missing.
    struct Found {
        Operation facts;
        KuuCoordSystemDomain area;
        int candidate = -1;
    };
    std::vector<Found> found;
    std::vector<Candidate> candidates;
    int fallback = -1;
    Side fromSide;
    Side toSide;
    bool hasVertical;

private:
    void describeSides(const KuuCoordSystemDomainProjector& from,
                       const KuuCoordSystemDomainProjector& to);
    void addUsable(const KuuCoordSystemDomainProjector& areas);
    void addMissing(const KuuCoordSystemDomainProjector& areas);
    void insert(Found operation);

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
    if (candidates.empty())
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

void KuuCoordSystemOperations::Search::addUsable(const KuuCoordSystemDomainProjector& areas)
{
    const ListPointer list = findOperations(
        m_from.get(), m_to.get(), PROJ_GRID_AVAILABILITY_DISCARD_OPERATION_IF_MISSING_GRID);
    const int count = list ? proj_list_get_count(list.get()) : 0;
    for (int i = 0; i < count; ++i) {
        const PjPointer operation(proj_list_get(context(), list.get(), i));
        const PjPointer normalized(
            operation ? proj_normalize_for_visualization(context(), operation.get()) : nullptr);
        const char* text =
            normalized ? proj_as_proj_string(context(), normalized.get(), PJ_PROJ_5, nullptr)
                       : nullptr;
        if (!text)
            continue;
        Candidate candidate;
        candidate.pipeline = text;
        if (!PjPointer(proj_create(context(), candidate.pipeline.constData())))
            continue;
        const KuuCoordSystemArea area = readAreaOfUse(operation.get());
        const Operation facts = describe(operation.get(), area);
        candidate.area = areas.project(area);
        candidate.accuracy = facts.accuracy;
        candidate.isBallpark = facts.isBallpark;
        candidate.isAtSea = area.name.contains(QLatin1String("- offshore"));
        const int rank = static_cast<int>(candidates.size());
        if (fallback < 0 &&
            proj_coordoperation_get_grid_used_count(context(), operation.get()) == 0)
            fallback = rank;
        insert({facts, candidate.area, rank});
        candidates.push_back(std::move(candidate));
    }
}

/// Behind those that are as accurate; operations without accuracy stay behind all others.
void KuuCoordSystemOperations::Search::insert(Found operation)
{
    const auto place =
        std::upper_bound(found.begin(), found.end(), operation, [](const Found& a, const Found& b) {
            return a.facts.accuracy < b.facts.accuracy;
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
        const KuuCoordSystemArea area = readAreaOfUse(operation.get());
        Found result{describe(operation.get(), area), areas.project(area), -1};
        const bool isReplaced =
            std::any_of(found.begin(), found.end(), [&result](const Found& other) {
                return other.facts.accuracy <= result.facts.accuracy &&
                       other.area.contains(result.area);
            });
        if (!isReplaced)
            missing.push_back(std::move(result));
    }
    for (Found& operation : missing)
        insert(std::move(operation));
}

/// PROJ's rule for two operations that could both take a point: the more accurate one, of two
/// equals the one for the smaller area. Areas at sea reach ashore with their boxes and do not
/// displace others.
static bool isBetterCandidate(const KuuCoordSystemOperations::Candidate& a,
                              const KuuCoordSystemOperations::Candidate& b)
{
    if (a.accuracy == HbbGlobal::D_FFFF || b.accuracy == HbbGlobal::D_FFFF || a.isAtSea)
        return false;
    if (a.accuracy != b.accuracy)
        return a.accuracy < b.accuracy;
    return b.area.contains(a.area) && !a.area.contains(b.area);
}

KuuCoordSystemOperations::KuuCoordSystemOperations(const QString& from, const QString& to)
{
    static std::atomic<quint64> lastId{0};
    m_id = ++lastId;
    Search search(from, to);
    search.run();
    m_candidates = std::move(search.candidates);
    m_fallback = search.fallback;
    for (const Search::Found& operation : search.found) {
        if (operation.candidate >= 0)
            m_candidates[static_cast<std::size_t>(operation.candidate)].operation =
                m_operations.size();
        m_operations.append(operation.facts);
    }
    for (const Candidate& a : m_candidates) {
        for (const Candidate& b : m_candidates)
            m_isBetter.push_back(isBetterCandidate(a, b));
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
