#include <util/dataset/KudADataset.h>
#include <util/dataset/KudDatasetDirectory.h>
#include <util/dataset/KudGenericDatasetFactory.h>
#include <util/xml/KuxXmlMementoFile.h>

#include <basic/base/HbbDebug.h>
#include <basic/calc/HbcCancelled.h>
#include <basic/error/HbeDiskError.h>
#include <basic/error/HbeUserError.h>

#include <QtCore/QHash>
#include <QtCore/QRegularExpression>

namespace
{
/// Collects the warnings that are printed while it lives.
class WarningCollector
{
public:
    explicit WarningCollector(QStringList& warnings)
        : m_before(HbbDebug::setSink([&warnings](HbbDebug::Level level, const QString& message) {
            if (level == HbbDebug::Level::WARNING)
                warnings.append(message.trimmed());
        }))
    {
    }
    ~WarningCollector() { HbbDebug::setSink(m_before); }
    WarningCollector(const WarningCollector&) = delete;
    WarningCollector& operator=(const WarningCollector&) = delete;

private:
    HbbDebug::Sink m_before;
};

/// The library's own factory serves whoever brings none.
const KudGenericDatasetFactory& orDefault(const KudGenericDatasetFactory* factory)
{
    static const KudGenericDatasetFactory ours;
    return factory == nullptr ? ours : *factory;
}

bool isMementoName(const QString& fileName)
{
    static const QRegularExpression pattern(
        QStringLiteral("^.+_[0-9a-fA-F]{8}(-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}\\.xml$"));
    return pattern.match(fileName).hasMatch();
}
} // namespace

KudDatasetDirectory::KudDatasetDirectory(const QString& path,
                                         const KudGenericDatasetFactory* factory)
    : KuxMementoDirectory(path, KudADataset::getMementoRelation(), tr("dataset"))
    , m_factory(factory)
{
}

QString KudDatasetDirectory::_readNameOf(const KuuId& id) const
{
    return read(id)->getName();
}

std::unique_ptr<KudADataset> KudDatasetDirectory::read(const KuuId& id) const
{
    std::unique_ptr<KudADataset> dataset;
    readMemento(id, [&](const KuuMemento& memento) {
        dataset = orDefault(m_factory).create(memento, true);
    });
    return dataset;
}

QString KudDatasetDirectory::readCoordSystem(const KuuId& id) const
{
    return KuxXmlMementoFile::peekText(directory(), id, QStringLiteral("coordSystem"));
}

void KudDatasetDirectory::save(const KudADataset& dataset, const KuuId& id) const
{
    const bool existed = exists();
    if (!existed && !directory().mkpath(QStringLiteral(".")))
        throw HbeDiskError(tr("Cannot create the directory '%1'.").arg(getPath()));
    try {
        saveMemento(dataset.getMemento(), id);
    } catch (...) {
        if (!existed)
            directory().rmdir(QStringLiteral("."));
        throw;
    }
}

void KudDatasetDirectory::checkMemento(FileCheck& file) const
{
    const WarningCollector collector(file.warnings);
    try {
        const KuuMemento memento = KuxXmlMementoFile::read(directory().filePath(file.fileName));
        file.id = memento.getId();
        const QString expected = KuxXmlMementoFile::getFileName(file.id);
        if (expected != file.fileName)
            file.errors.append(tr("It holds what belongs into '%1'.").arg(expected));
        if (file.id.getRelation() != KudADataset::getMementoRelation())
            return;
        file.name = orDefault(m_factory).create(memento, true)->getName();
        if (file.name.isEmpty())
            file.errors.append(tr("The dataset has no name."));
    } catch (const HbeError& error) {
        file.errors.append(KuxXmlMementoFile::getReason(error));
    }
}

std::vector<KudDatasetDirectory::FileCheck>
KudDatasetDirectory::check(const Progress& progress) const
{
    requireExists();
    const QStringList names = directory().entryList(
        QDir::Files | QDir::Dirs | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    std::vector<FileCheck> files;
    QHash<QString, QString> fileOfName;
    for (const QString& fileName : names) {
        if (progress && !progress(static_cast<int>(files.size()), names.size()))
            throw HbcCancelled();
        FileCheck file;
        file.fileName = fileName;
        file.isMemento = isMementoName(fileName);
        if (file.isMemento)
            checkMemento(file);
        if (fileOfName.contains(file.name))
            file.errors.append(tr("'%1' holds a dataset of the same name, '%2'.")
                                   .arg(fileOfName.value(file.name), file.name));
        else if (!file.name.isEmpty())
            fileOfName.insert(file.name, fileName);
        files.push_back(file);
    }
    return files;
}
