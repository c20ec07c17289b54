#pragma once

#include <basic/calc/HbcAProgress.h>

/// A part of a job: while it lives, `initCounter` and `advance` of the job count the part, and the
/// part as a whole is worth `units` of the counter before. So a function that reports to a job
/// serves alone and as a step of a longer job. At its end the units are counted in full.
///
/// A scope on the stack of the running thread; scopes nest.
class KELVANE_BASIC_EXPORT HbcSubProgress
{
public:
    HbcSubProgress(HbcAProgress& progress, qint64 units)
        : m_progress(progress)
    {
        m_progress.pushLevel(m_level, units);
    }
    ~HbcSubProgress() { m_progress.popLevel(); }
    HbcSubProgress(const HbcSubProgress&) = delete;
    HbcSubProgress& operator=(const HbcSubProgress&) = delete;

private:
    HbcAProgress& m_progress;
    HbcAProgress::Level m_level;
};
