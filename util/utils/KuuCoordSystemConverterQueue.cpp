#include "KuuCoordSystemConverterPrivate.h"

#include <basic/base/HbbGlobal.h>
#include <basic/calc/HbcAProgress.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/geometry/HbgGeomPolygon.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

using Counts = KuuCoordSystemConverter::Counts;

namespace
{
constexpr qint64 POINTS_A_THREAD = 50000; // below, starting a thread is not worth it

/// The conversion of one long array, by the calling thread and others that it starts and joins.
class Run
{
public:
    Run(const KuuCoordSystemTask& task, double* x, double* y, double* z, qint64 count,
        qint64 stride, HbcAProgress* progress)
        : m_task(task)
        , m_x(x)
        , m_y(y)
        , m_z(z)
        , m_count(count)
        , m_stride(stride)
        , m_progress(progress)
    {
    }

    Counts work(int threads)
    {
        std::vector<std::thread> workers;
        if (m_task.operations)
            m_counts.byOperation.fill(0, m_task.operations->getOperations().size());
        try {
            for (int i = 1; i < threads; ++i)
                workers.emplace_back([this] { convertBlocks(); });
        } catch (const std::system_error&) {
            // Fewer will do.
        }
        convertBlocks();
        for (std::thread& worker : workers)
            worker.join();
        if (m_error)
            std::rethrow_exception(m_error);
        return m_counts;
    }

private:
    void convertBlocks() noexcept
    {
        Counts counts;
        std::exception_ptr error;
        try {
            if (m_task.operations)
                counts.byOperation.fill(0, m_task.operations->getOperations().size());
            KuuCoordSystemBlock block(m_task, counts.byOperation.data());
            while (!m_isStopped.load(std::memory_order_relaxed) && convertNext(block, counts)) {
            }
        } catch (...) {
            error = std::current_exception();
            m_isStopped = true;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_counts += counts; // within the room that the calling thread made
        if (error && !m_error)
            m_error = error;
    }

    bool convertNext(KuuCoordSystemBlock& block, Counts& counts)
    {
        if (m_progress && m_progress->isCancelled())
            return false;
        const qint64 first = m_next.fetch_add(KuuCoordSystemBlock::SIZE);
        if (first >= m_count)
            return false;
        const qint64 count = std::min<qint64>(KuuCoordSystemBlock::SIZE, m_count - first);
        const qint64 offset = first * m_stride;
        counts += block.convert(m_x + offset, m_y + offset, m_z ? m_z + offset : nullptr,
                                static_cast<int>(count), m_stride);
        if (m_progress)
            m_progress->advance(count);
        return true;
    }

    const KuuCoordSystemTask& m_task;
    double* const m_x;
    double* const m_y;
    double* const m_z;
    const qint64 m_count;
    const qint64 m_stride;
    HbcAProgress* const m_progress;
    std::atomic<qint64> m_next{0};
    std::atomic<bool> m_isStopped{false};
    std::mutex m_mutex; // of the counts and the error
    Counts m_counts;
    std::exception_ptr m_error;
};

double* valuesOf(HbdAVariable& variable)
{
    auto* real = dynamic_cast<HbdVariableReal*>(&variable);
    if (!real) {
        HBE_PROGRAMMING_ERROR("utils\\KuuCoordSystemConverter",
                              QStringLiteral("The variable '%1' is no column of reals.")
                                  .arg(variable.getDetails().name));
    }
    return real->editValues().data();
}

/// The images of a ring's corners; failed and undefined ones are counted.
bool convertRing(const KuuCoordSystemConverter& converter, HbgGeomPolygon::Ring& ring,
                 Counts& counts)
{
    if (ring.isEmpty())
        return true;
    const Counts own = converter.convert(&ring[0].x, &ring[0].y, nullptr, ring.size(), 2);
    counts += own;
    return own.converted == ring.size();
}

/// Empty when a corner has no image, or a ring collapses.
HbgGeomPolygon imageOf(const KuuCoordSystemConverter& converter, const HbgGeomPolygon& polygon,
                       Counts& counts)
{
    HbgGeomPolygon image;
    bool isWhole = true;
    for (int i = 0; i < polygon.getContourCount(); ++i) {
        HbgGeomPolygon::Ring ring = polygon.getContour(i);
        isWhole = convertRing(converter, ring, counts) && isWhole;
        isWhole = isWhole && image.addContour(ring);
        for (int hole = 0; hole < polygon.getHoleCount(i); ++hole) {
            ring = polygon.getHole(i, hole);
            isWhole = convertRing(converter, ring, counts) && isWhole;
            isWhole = isWhole && image.addHole(i, ring);
        }
    }
    return isWhole ? image : HbgGeomPolygon();
}
} // namespace

Counts KuuCoordSystemConverter::Private::convert(double* x, double* y, double* z, qint64 count,
                                                 qint64 stride, int maxThreads,
                                                 HbcAProgress* progress) const
{
    qint64 threads = std::max(1U, std::thread::hardware_concurrency());
    if (maxThreads > 0)
        threads = std::min<qint64>(threads, maxThreads);
    threads = std::clamp<qint64>(count / POINTS_A_THREAD, 1, threads);
    return Run(task, x, y, z, count, stride, progress).work(static_cast<int>(threads));
}

void KuuCoordSystemConverter::wantToConvert(double* x, double* y, double* z, qint64 count,
                                            qint64 stride)
{
    m_wanted.push_back({x, y, z, count, stride, nullptr});
}

void KuuCoordSystemConverter::wantToConvert(HbgGeomPolygon& polygon)
{
    m_wanted.push_back({nullptr, nullptr, nullptr, polygon.getPointCount(), 1, &polygon});
}

void KuuCoordSystemConverter::wantToConvert(HbdAVariable& x, HbdAVariable& y, HbdAVariable* z)
{
    if (x.getCount() != y.getCount() || (z && x.getCount() != z->getCount())) {
        HBE_PROGRAMMING_ERROR("utils\\KuuCoordSystemConverter",
                              QStringLiteral("The columns of coordinates differ in length."));
    }
    wantToConvert(valuesOf(x), valuesOf(y), z ? valuesOf(*z) : nullptr, x.getCount());
}

Counts KuuCoordSystemConverter::convertWanted(HbcAProgress& progress)
{
    std::vector<Wanted> wanted;
    wanted.swap(m_wanted);
    qint64 total = 0;
    for (const Wanted& item : wanted)
        total += item.count;
    progress.initCounter(total);
    Counts counts;
    for (const Wanted& item : wanted) {
        progress.checkCancelled();
        if (item.polygon) {
            *item.polygon = imageOf(*this, *item.polygon, counts);
            progress.advance(item.count);
        } else {
            counts += d->convert(item.x, item.y, item.z, item.count, item.stride, 0, &progress);
        }
    }
    progress.checkCancelled();
    return counts;
}
