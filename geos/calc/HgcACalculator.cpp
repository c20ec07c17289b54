#include <geos/calc/HgcACalculator.h>

#include <basic/error/HbeUserError.h>

HgcACalculator::~HgcACalculator() = default;

void HgcACalculator::_checkSetup() const {}

void HgcACalculator::_run()
{
    _checkSetup();
    const QString inputError = _checkInputs();
    if (!inputError.isEmpty())
        throw HbeUserError(inputError);
    checkCancelled();
    _compute();
}
