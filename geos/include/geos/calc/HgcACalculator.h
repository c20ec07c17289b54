#pragma once

#include <geos/calc/HgcExport.h>

#include <basic/calc/HbcAProgress.h>

/// A job that computes from inputs: its setup and its inputs are checked first, then `_compute`
/// runs. Runs, cancels and reports as any HbcAProgress.
class KELVANE_GEOS_EXPORT HgcACalculator : public HbcAProgress
{
    Q_OBJECT

public:
    using HbcAProgress::HbcAProgress;
    ~HgcACalculator() override;

    /// Why the inputs do not do, translated; empty when they do. May be asked before a run.
    QString getInputError() const { return _checkInputs(); }

protected:
    /// Raises a programming error when something is missing that the owner must set before a run.
    virtual void _checkSetup() const;
    /// See getInputError. An error ends the run as HbeUserError before anything is computed.
    virtual QString _checkInputs() const = 0;
    virtual void _compute() = 0;

private:
    void _run() final;
};
