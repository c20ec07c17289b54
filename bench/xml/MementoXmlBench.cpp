// 10,000 mementos of 30 fields in two levels as XML, against the same documents through
// QDomDocument: built and saved, parsed and walked. The peer writes its files in place, without
// waiting for the disk; ours replaces each file as a whole, so that a power cut loses nothing.
#include <RatioLimits.h>

#include <util/xml/KuxXmlMementoFile.h>

#include <benchmark/benchmark.h>

#include <QtCore/QTemporaryDir>
#include <QtCore/QTextStream>
#include <QtXml/QDomDocument>

#include <unistd.h>

namespace
{
constexpr int COUNT = 10000;
constexpr int FIELDS = 15; // in each of the two levels

QVariantMap fieldsOf(int number)
{
    QVariantMap fields;
    for (int i = 0; i < FIELDS; ++i) {
        const QString key = QStringLiteral("field%1").arg(i, 2, 10, QLatin1Char('0'));
        switch (i % 3) {
        case 0:
            fields.insert(key, number + i);
            break;
        case 1:
            fields.insert(key, number / 7.0 + i);
            break;
        default:
            fields.insert(key, QStringLiteral("some text of object %1").arg(number));
        }
    }
    return fields;
}

const QList<KuuMemento>& mementos()
{
    static const QList<KuuMemento> all = [] {
        QList<KuuMemento> list;
        for (int number = 0; number < COUNT; ++number) {
            KuuMemento memento(KuuId::generate(QStringLiteral("SceneItem")));
            memento.setFields(fieldsOf(number));
            memento.setField(QStringLiteral("level"), fieldsOf(number + 1));
            list.append(memento);
        }
        return list;
    }();
    return all;
}

const QList<QByteArray>& files()
{
    static const QList<QByteArray> all = [] {
        QList<QByteArray> list;
        for (const KuuMemento& memento : mementos())
            list.append(KuxXmlMementoFile::mementoToBytes(memento));
        return list;
    }();
    return all;
}

void addText(QDomDocument& document, QDomNode parent, const QString& name, const QString& text)
{
    parent.appendChild(document.createElement(name)).appendChild(document.createTextNode(text));
}

void addMap(QDomDocument& document, QDomElement element, const QVariantMap& map)
{
    element.setAttribute(QStringLiteral("type"), QStringLiteral("QMap"));
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        if (it->userType() == QMetaType::QVariantMap)
            addMap(document, element.appendChild(document.createElement(it.key())).toElement(),
                   it->toMap());
        else
            addText(document, element, it.key(), it->toString());
    }
}

QDomDocument documentOf(const KuuMemento& memento)
{
    QDomDocument document;
    QDomElement root = document.createElement(memento.getId().getRelation());
    document.appendChild(root);
    addText(document, root, QStringLiteral("id"), memento.getId().getUuid());
    addText(document, root, QStringLiteral("version"), QString::number(memento.getVersion()));
    addMap(document, root.appendChild(document.createElement(QStringLiteral("fields"))).toElement(),
           memento.getFields());
    return document;
}

void save(const QDomDocument& document, QTextStream& stream)
{
    stream.setCodec("UTF-8");
    document.save(stream, 4, QDomNode::EncodingFromTextStream);
    stream.flush();
}

int walk(const QDomElement& element)
{
    int length = element.tagName().size();
    bool isLeaf = true;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        length += walk(child);
        isLeaf = false;
    }
    return isLeaf ? length + element.text().size() : length;
}

void writeDom(benchmark::State& state)
{
    mementos();
    for (auto _ : state)
        for (const KuuMemento& memento : mementos()) {
            QByteArray bytes;
            QTextStream stream(&bytes);
            save(documentOf(memento), stream);
            benchmark::DoNotOptimize(bytes.constData());
        }
}
BENCHMARK(writeDom)->Unit(benchmark::kMillisecond);

void writeMemento(benchmark::State& state)
{
    mementos();
    for (auto _ : state)
        for (const KuuMemento& memento : mementos())
            benchmark::DoNotOptimize(KuxXmlMementoFile::mementoToBytes(memento).constData());
}
BENCHMARK(writeMemento)->Unit(benchmark::kMillisecond);

void readDom(benchmark::State& state)
{
    files();
    for (auto _ : state)
        for (const QByteArray& bytes : files()) {
            QDomDocument document;
            document.setContent(bytes, true);
            benchmark::DoNotOptimize(walk(document.documentElement()));
        }
}
BENCHMARK(readDom)->Unit(benchmark::kMillisecond);

void readMemento(benchmark::State& state)
{
    files();
    for (auto _ : state)
        for (const QByteArray& bytes : files())
            benchmark::DoNotOptimize(
                KuxXmlMementoFile::bytesToMemento(bytes, QString()).getVersion());
}
BENCHMARK(readMemento)->Unit(benchmark::kMillisecond);

/// Saves all mementos over existing files, once: after a save ext4 searches long for free inodes,
/// for it spares those that were just freed, so a second save at once would measure that search.
/// What others left to be written is written before, so that nobody waits for another's data.
template <class Save>
void saveFiles(benchmark::State& state, const Save& save)
{
    const QTemporaryDir folder;
    const QDir directory(folder.path());
    save(directory);
    for (auto _ : state) {
        state.PauseTiming();
        ::sync();
        state.ResumeTiming();
        save(directory);
    }
}

void saveMementosSafely(benchmark::State& state)
{
    saveFiles(state, [](const QDir& directory) { KuxXmlMementoFile::save(directory, mementos()); });
}
BENCHMARK(saveMementosSafely)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

void saveDomInPlace(benchmark::State& state)
{
    saveFiles(state, [](const QDir& directory) {
        for (const KuuMemento& memento : mementos()) {
            QFile file(directory.filePath(KuxXmlMementoFile::getFileName(memento.getId())));
            file.open(QIODevice::WriteOnly | QIODevice::Truncate);
            QTextStream stream(&file);
            save(documentOf(memento), stream);
        }
    });
}
BENCHMARK(saveDomInPlace)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

/// For comparison, without a limit: each file waits for the disk by itself.
void saveMementosOneByOne(benchmark::State& state)
{
    saveFiles(state, [](const QDir& directory) {
        for (const KuuMemento& memento : mementos())
            KuxXmlMementoFile::save(directory, memento);
    });
}
BENCHMARK(saveMementosOneByOne)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

/// 100 MB of one text against a plain copy of its bytes into a QString and back.
const QString& column()
{
    static const QString text(100 * 1000 * 1000, QLatin1Char('A'));
    return text;
}

void copyText(benchmark::State& state)
{
    for (auto _ : state) {
        const QByteArray bytes = column().toUtf8();
        benchmark::DoNotOptimize(QString::fromUtf8(bytes).constData());
    }
}
BENCHMARK(copyText)->Unit(benchmark::kMillisecond);

void writeAndReadText(benchmark::State& state)
{
    KuuMemento memento(KuuId::generate(QStringLiteral("Column")));
    memento.setField(QStringLiteral("data"), column());
    for (auto _ : state) {
        const QByteArray bytes = KuxXmlMementoFile::mementoToBytes(memento);
        benchmark::DoNotOptimize(KuxXmlMementoFile::bytesToMemento(bytes, QString()).getVersion());
    }
}
BENCHMARK(writeAndReadText)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    return runWithLimits(argc, argv,
                         {{"writeMemento", "writeDom", 0.5},
                          {"readMemento", "readDom", 0.5},
                          {"saveMementosSafely", "saveDomInPlace", 1.0},
                          {"writeAndReadText", "copyText", 4.0}});
}
