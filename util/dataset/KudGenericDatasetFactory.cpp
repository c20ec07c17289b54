#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/dataset/KudMemoryDatasetGrid.h>
#include <util/dataset/KudMemoryDatasetPoint.h>
#include <util/utils/KuuMemento.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

KudGenericDatasetFactory::KudGenericDatasetFactory() = default;
KudGenericDatasetFactory::~KudGenericDatasetFactory() = default;

std::unique_ptr<KudADataset> KudGenericDatasetFactory::create(const KuuMemento& memento,
                                                              bool adoptId) const
{
    const QString type = memento.getField(QStringLiteral("type")).toString();
    std::unique_ptr<KudADataset> dataset(_createFromType(type));
    if (dataset == nullptr) {
        HBE_PROGRAMMING_ERROR("dataset/KudGenericDatasetFactory",
                              QCoreApplication::translate("KudGenericDatasetFactory",
                                                          "Unable to create a dataset of type ") +
                                  type);
    }
    dataset->setMemento(memento, adoptId);
    return dataset;
}

KudADataset* KudGenericDatasetFactory::_createFromType(const QString& type) const
{
    if (type == QLatin1String(KudMemoryDatasetPoint::getClassType()))
        return std::make_unique<KudMemoryDatasetPoint>(QString()).release();
    if (type == QLatin1String(KudMemoryDatasetGrid::getClassType()))
        return std::make_unique<KudMemoryDatasetGrid>(QString()).release();
    return nullptr;
}
