#pragma once

#include "KuuCoordSystemOperations.h"

#include <basic/unit/HbuUnitTransfo.h>

/// What a converter does to coordinates; unchanging, for any thread.
struct KuuCoordSystemTask {
    std::shared_ptr<const KuuCoordSystemOperations> operations; ///< null: units only
    HbuUnitTransfo planeIn;                                     ///< to what PROJ takes
    HbuUnitTransfo heightIn;
    HbuUnitTransfo planeOut; ///< from what PROJ gives
    HbuUnitTransfo heightOut;
    double toTurn = 0.; ///< 360 degrees, where the results of a reprojection are longitudes
};

/// Converts some hundreds of points at a time, for one thread: PROJ is called for whole runs of
/// points that one operation is for. Nothing is allocated, but for PROJ's own objects on first use.
/// Large; lives on a stack.
class KuuCoordSystemBlock
{
public:
    static constexpr int SIZE = 1024; ///< all of it stays in the processor's cache

    /// `uses` counts points by operation; may be null.
    explicit KuuCoordSystemBlock(const KuuCoordSystemTask& task, qint64* uses = nullptr)
        : m_task(task)
        , m_operations(task.operations.get())
        , m_uses(uses)
    {
    }

    /// In place, at most SIZE points; see KuuCoordSystemConverter::convert.
    KuuCoordSystemConverter::Counts convert(double* x, double* y, double* z, int count,
                                            qint64 stride);

private:
    void read(const double* x, const double* y, const double* z, qint64 stride);
    void write(double* x, double* y, double* z, qint64 stride);
    void finish(KuuCoordSystemConverter::Counts& counts);
    void reproject();
    void choose();
    void retry(int i);
    void run(int first, int end, int candidate);
    void countUse(KuuCoordSystemConverter::Counts& counts) const;
    bool isInside(int i) const;
    bool isConverted(int i) const;
    KuuCoordSystemBox boxOf(const double* x, const double* y) const;

    const KuuCoordSystemTask& m_task;
    const KuuCoordSystemOperations* m_operations; // borrowed from the task
    qint64* const m_uses;
    int m_count = 0;
    bool m_hasHeights = false;
    bool m_isOneChoice = true; // m_choices[0] stands for all
    double m_x[SIZE];          // what PROJ takes, then what it gives
    double m_y[SIZE];
    double m_z[SIZE];
    double m_oldX[SIZE]; // what PROJ took
    double m_oldY[SIZE];
    double m_oldZ[SIZE];
    int m_choices[SIZE]; // the candidate of each point, -1: none
    bool m_isUndefined[SIZE];
};
