#pragma once

#include <util/extern/KueTableReader.h>
#include <util/utils/KuuCoordSystem.h>

#include <memory>

class KudMemoryDatasetPoint;

/// Makes a point dataset of a table of text: what KueTableReader reads, with a name and a
/// coordinate system.
///
///     KueTableImport import;
///     import.setCoordSystem(KuuCoordSystem::createFromEpsg("28992"));
///     std::unique_ptr<KudMemoryDatasetPoint> samples = import.read(path);
///
/// A table without coordinates makes a dataset all the same. One thread at a time.
class KELVANE_UTIL_EXPORT KueTableImport
{
public:
    explicit KueTableImport(const KueTableOptions& options = KueTableOptions());

    /// The name of the dataset; that of the file, without extension, unless it is set.
    void setName(const QString& name) { m_name = name; }
    void setCoordSystem(const KuuCoordSystem& coordSystem) { m_coordSystem = coordSystem; }
    void setProgress(KueTableReader::Progress progress)
    {
        m_reader.setProgress(std::move(progress));
    }

    /// The caller owns the dataset. Raises what KueTableReader::read raises; nothing is made then.
    std::unique_ptr<KudMemoryDatasetPoint> read(const QString& path);

    /// How the last file was understood, with notes and warnings; its columns are the dataset's
    /// now.
    const KueTableResult& getResult() const { return m_result; }

private:
    KueTableReader m_reader;
    QString m_name;
    KuuCoordSystem m_coordSystem;
    KueTableResult m_result;
};
