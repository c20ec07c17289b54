#include <util/dataset/KudEmptyDataTable.h>
#include <util/utils/KuuCoordSystem.h>

KudEmptyDataTable::KudEmptyDataTable() = default;
KudEmptyDataTable::~KudEmptyDataTable() = default;

bool KudEmptyDataTable::isValid() const
{
    return false;
}

QByteArray KudEmptyDataTable::getType() const
{
    return QByteArrayLiteral("EmptyDataTable");
}

QString KudEmptyDataTable::getName() const
{
    return QString();
}

bool KudEmptyDataTable::hasSample() const
{
    return false;
}

int KudEmptyDataTable::getSampleCount() const
{
    return 0;
}

void KudEmptyDataTable::setCoordSystem(const KuuCoordSystem&) {}

KuuCoordSystem KudEmptyDataTable::getCoordSystem() const
{
    return KuuCoordSystem();
}

HbuUnit KudEmptyDataTable::getCoordinateUnit() const
{
    return HbuUnit();
}

HbuUnit KudEmptyDataTable::getElevationUnit() const
{
    return HbuUnit();
}

KudDatasetVariable KudEmptyDataTable::_addVariable(HbdAVariable*)
{
    return KudDatasetVariable();
}

KudDatasetVariable KudEmptyDataTable::_createVariable(const HbdVariableDetails&)
{
    return KudDatasetVariable();
}

HbdAVariable* KudEmptyDataTable::_readVariable(const KudDatasetVariable&) const
{
    return nullptr;
}

bool KudEmptyDataTable::_renameVariable(const KudDatasetVariable&, const QString&)
{
    return false;
}

bool KudEmptyDataTable::_deleteVariable(const KudDatasetVariable&)
{
    return false;
}

bool KudEmptyDataTable::_setDetails(const KudDatasetVariable&, const HbdVariableDetails&)
{
    return false;
}

int KudEmptyDataTable::_createSample(const SampleValues&)
{
    return -1;
}

int KudEmptyDataTable::_createSamples(const QList<SampleValues>&)
{
    return -1;
}

bool KudEmptyDataTable::_deleteSamples(const HbiIntervalIntSmall&)
{
    return false;
}

bool KudEmptyDataTable::_updateValues(int, const SampleValues&)
{
    return false;
}

KudDataTableHeader KudEmptyDataTable::_rebuildHeader() const
{
    KudDataTableHeader header;
    header.setValid(true);
    return header;
}

void KudEmptyDataTable::_cacheClear() const {}
