#pragma once

#include "KuuCoordSystemDomain.h"

#include <util/utils/KuuCoordSystemConverter.h>

#include <QtCore/QByteArray>

/// The operations that PROJ knows between two systems: found once (a search of the database), then
/// shared, unchanging, by all converters and threads. A thread makes its own PROJ objects of their
/// texts.
///
/// Coordinates here are those that PROJ takes: east before north, in the units of the systems'
/// axes.
class KuuCoordSystemOperations
{
public:
    /// An operation whose files are there.
    struct Candidate {
        QByteArray pipeline;       ///< as PROJ writes it
        KuuCoordSystemDomain area; ///< of use, in coordinates of the first system
        double accuracy = 0.;      ///< in metres; D_FFFF: unknown
        int operation = -1;        ///< its rank in getOperations()
        bool isBallpark = false;
        bool isAtSea = false;
    };

    /// One of the two systems.
    struct Side {
        double planeFactor = 1.;  ///< of the units of its axes, in radians or metres
        double heightFactor = 1.; ///< in metres
        bool isGeographic = false;
        KuuCoordSystemDomain ownArea;   ///< where it is for, in coordinates of this side
        KuuCoordSystemDomain otherArea; ///< where the other system is for, likewise
    };

    /// From the cache, or found and put there. The texts are those of KuuCoordSystemProj.
    /// HbeUserError where PROJ knows no operation.
    static std::shared_ptr<const KuuCoordSystemOperations> find(const QString& from,
                                                                const QString& to);

    /// In PROJ's order; never empty.
    const std::vector<Candidate>& getCandidates() const { return m_candidates; }
    /// The candidate for a place, but for those that `isExcluded` answers true of: the one that
    /// PROJ takes. -1: the place is in no candidate's area.
    template <class Predicate>
    int choose(double x, double y, Predicate isExcluded) const;
    /// The one for points in no candidate's area; -1: none.
    int getFallback() const { return m_fallback; }
    /// Those for people, the most accurate first: also those that lack files.
    const QVector<KuuCoordSystemConverter::Operation>& getOperations() const
    {
        return m_operations;
    }
    const Side& getFrom() const { return m_from; }
    const Side& getTo() const { return m_to; }
    /// PROJ converts elevations, too: both systems have a vertical part.
    bool hasVertical() const { return m_hasVertical; }

    /// The calling thread's object of a candidate; null when PROJ refuses to make it here. It is
    /// good until the thread asks for an object of other operations.
    PJ* getPipeline(int candidate) const;

    KuuCoordSystemOperations(const QString& from, const QString& to);

private:
    class Search;

    bool isBetter(int a, int b) const
    {
        return m_isBetter[static_cast<std::size_t>(a) * m_candidates.size() +
                          static_cast<std::size_t>(b)];
    }

    std::vector<Candidate> m_candidates;
    std::vector<bool> m_isBetter; // of two candidates, the first
    QVector<KuuCoordSystemConverter::Operation> m_operations;
    int m_fallback = -1;
    Side m_from;
    Side m_to;
    bool m_hasVertical = false;
    quint64 m_id; // no other's, ever
};

template <class Predicate>
int KuuCoordSystemOperations::choose(double x, double y, Predicate isExcluded) const
{
    int best = -1;
    for (int i = 0; i < static_cast<int>(m_candidates.size()); ++i) {
        if (!isExcluded(i) && m_candidates[static_cast<std::size_t>(i)].area.contains(x, y) &&
            (best < 0 || isBetter(i, best)))
            best = i;
    }
    return best;
}
