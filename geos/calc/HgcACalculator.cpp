#include <geos/calc/HgcACalculator.h>

#include <basic/error/HbeUserError.h>

HgcACalculator::~HgcACalculator() = default;

void HgcACalculator::_run()
{
    const QString inputError = _checkInputs();
    if (!inputError.isEmpty())
        throw HbeUserError(inputError);
    checkCancelled();
    _compute();
}
