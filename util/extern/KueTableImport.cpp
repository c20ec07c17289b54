#include <util/extern/KueTableImport.h>

#include <util/dataset/KudMemoryDatasetPoint.h>

#include <QtCore/QFileInfo>

KueTableImport::KueTableImport(const KueTableOptions& options)
    : m_reader(options)
{
}

std::unique_ptr<KudMemoryDatasetPoint> KueTableImport::read(const QString& path)
{
    m_result = m_reader.read(path);
    const QString name = m_name.isEmpty() ? QFileInfo(path).completeBaseName() : m_name;
    auto dataset = std::make_unique<KudMemoryDatasetPoint>(name);
    dataset->setDataTable(std::move(m_result.table));
    dataset->setCoordSystem(m_coordSystem);
    return dataset;
}
