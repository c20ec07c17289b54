// A million rows to delimited text: the export by blocks and line by line, beside a plain loop over
// the same columns that writes the same file with std::to_chars into a large buffer. And into
// another coordinate system, beside a conversion of all coordinates at once before that loop.
#include <RatioLimits.h>

#include <util/calc/KucExportData.h>
#include <util/calc/KucExportDataEncodingCsv.h>
#include <util/utils/KuuCoordSystemConverter.h>

#include <geos/data/HgdDataSetPoints.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>

#include <benchmark/benchmark.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <random>
#include <unistd.h>

namespace
{
constexpr int ROWS = 1000000;
constexpr int REALS = 8;
constexpr int PRECISION = 6;
const char* const ROCKS[] = {"granite", "gneiss", "schist", "amphibolite", "quartzite"};

/// Coordinates, grades, an integer and a category, as samples have them.
struct Samples {
    std::vector<std::unique_ptr<HbdVariableReal>> reals;
    HbdVariableInteger hole{HbdVariableDetails("Hole")};
    HbdVariableEnum rock{HbdVariableDetails("Rock")};
    std::vector<std::string> labels; // of the rocks, by code

    Samples()
    {
        std::mt19937_64 random(17);
        std::uniform_real_distribution<double> coordinate(300000, 700000);
        std::lognormal_distribution<double> grade(0, 1);
        for (int i = 0; i < REALS; ++i) {
            HbdVariableDetails details("Real" + QString::number(i));
            details.format = HbbEFormat::DECIMAL;
            details.precision = PRECISION;
            reals.push_back(std::make_unique<HbdVariableReal>(details));
            for (int row = 0; row < ROWS; ++row)
                reals.back()->append(i < 3 ? coordinate(random) : grade(random));
        }
        HbdEnumCatalog catalog;
        for (const char* label : ROCKS) {
            catalog.findOrAdd(label);
            labels.emplace_back(label);
        }
        rock.setCatalog(catalog);
        for (int row = 0; row < ROWS; ++row) {
            hole.append(qint64(row / 50));
            rock.append(quint16(random() % labels.size()));
        }
    }

    HgdDataSetPoints toDataSet() const
    {
        HgdDataSetPoints points(ROWS);
        for (const auto& real : reals)
            points.addVariable(*real);
        points.addVariable(hole);
        points.addVariable(rock);
        return points;
    }
};

const Samples& samples()
{
    static const Samples instance;
    return instance;
}

/// Of one process, in memory where the system has such a place.
QString pathOf(const char* name)
{
    static const QTemporaryDir directory(QFile::exists("/dev/shm") ? "/dev/shm/export"
                                                                   : "/tmp/export");
    return directory.filePath(name);
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

char* writeRow(char* out, const Samples& data, int row)
{
    char* const end = out + 4096;
    for (const auto& real : data.reals) {
        out = std::to_chars(out, end, real->at(row), std::chars_format::fixed, PRECISION).ptr;
        *out++ = ',';
    }
    out = std::to_chars(out, end, data.hole.at(row)).ptr;
    *out++ = ',';
    const std::string& label = data.labels[data.rock.at(row)];
    std::memcpy(out, label.data(), label.size());
    out += label.size();
    *out++ = '\n';
    return out;
}

void writePlainly(const Samples& data, const QString& path)
{
    const int file = open(QFile::encodeName(path), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    constexpr std::size_t FULL = 1 << 20;
    std::vector<char> buffer(FULL + 8192);
    char* out = buffer.data();
    const auto flush = [&] {
        if (write(file, buffer.data(), std::size_t(out - buffer.data())) < 0)
            std::abort();
        out = buffer.data();
    };
    const char header[] = "Real0,Real1,Real2,Real3,Real4,Real5,Real6,Real7,Hole,Rock\n";
    out = std::copy(header, header + sizeof header - 1, out);
    for (int row = 0; row < ROWS; ++row) {
        out = writeRow(out, data, row);
        if (out - buffer.data() >= std::ptrdiff_t(FULL))
            flush();
    }
    flush();
    close(file);
}

class LineEncoding : public KucExportDataEncodingCsv
{
public:
    using KucExportDataEncodingCsv::KucExportDataEncodingCsv;
    void writeBlock(const KucExportBlock& block) override
    {
        KucAExportDataEncoding::writeBlock(block);
    }
};

template <class Encoding>
void writeThroughExport(const Samples& data, const QString& path)
{
    KucExportData exportData;
    exportData.setDataset(data.toDataSet());
    exportData.setEncodingStrategy(new Encoding(path, KueCsvSeparator(), KueDecimalSeparator()));
    if (!exportData.runInCurrentThread())
        exportData.rethrowError();
}

const KuuCoordSystem& zone(int number)
{
    static const KuuCoordSystem zones[] = {KuuCoordSystem::createFromEpsg("32631"),
                                           KuuCoordSystem::createFromEpsg("32632")};
    return zones[number];
}

/// The first two columns are coordinates.
struct PlacedSamples : Samples {
    PlacedSamples()
    {
        const HbdEVarRole roles[] = {HbdEVarRole::X_COORDINATE, HbdEVarRole::Y_COORDINATE};
        for (std::size_t i = 0; i < 2; ++i) {
            HbdVariableDetails details = reals[i]->getDetails();
            details.role = roles[i];
            reals[i]->setDetails(details);
        }
    }
};

const Samples& placedSamples()
{
    static const PlacedSamples instance;
    return instance;
}

void convertThenWritePlainly(const Samples& data, const QString& path)
{
    static const Samples converted;
    std::vector<double> x(ROWS);
    std::vector<double> y(ROWS);
    data.reals[0]->readNumbers(0, ROWS, x.data());
    data.reals[1]->readNumbers(0, ROWS, y.data());
    KuuCoordSystemConverter(zone(0), zone(1)).convert(x.data(), y.data(), nullptr, ROWS);
    converted.reals[0]->writeNumbers(0, ROWS, x.data());
    converted.reals[1]->writeNumbers(0, ROWS, y.data());
    writePlainly(converted, path);
}

void convertThroughExport(const Samples& data, const QString& path)
{
    KucExportData exportData;
    exportData.setDataset(data.toDataSet());
    exportData.setCoordSystems(zone(0), zone(1));
    exportData.setEncodingStrategy(
        new KucExportDataEncodingCsv(path, KueCsvSeparator(), KueDecimalSeparator()));
    if (!exportData.runInCurrentThread())
        exportData.rethrowError();
}

void run(benchmark::State& state, const Samples& data,
         void (*write)(const Samples&, const QString&), const char* name)
{
    const QString path = pathOf(name);
    for (auto _ : state)
        write(data, path);
    state.SetItemsProcessed(state.iterations() * ROWS);
}

void plainLoop(benchmark::State& state)
{
    run(state, samples(), writePlainly, "plain.csv");
}
void byBlocks(benchmark::State& state)
{
    run(state, samples(), writeThroughExport<KucExportDataEncodingCsv>, "blocks.csv");
}
void byLines(benchmark::State& state)
{
    run(state, samples(), writeThroughExport<LineEncoding>, "lines.csv");
}

void convertedPlainly(benchmark::State& state)
{
    run(state, placedSamples(), convertThenWritePlainly, "plain-converted.csv");
}
void converted(benchmark::State& state)
{
    run(state, placedSamples(), convertThroughExport, "converted.csv");
}

/// A fast export of something else would prove nothing.
void checkSameFiles()
{
    writePlainly(samples(), pathOf("plain.csv"));
    writeThroughExport<KucExportDataEncodingCsv>(samples(), pathOf("blocks.csv"));
    writeThroughExport<LineEncoding>(samples(), pathOf("lines.csv"));
    const QByteArray plain = bytesOf(pathOf("plain.csv"));
    if (plain.isEmpty() || plain != bytesOf(pathOf("blocks.csv")) ||
        plain != bytesOf(pathOf("lines.csv")))
        throw std::runtime_error("the exports differ from the plain loop");
    convertThenWritePlainly(placedSamples(), pathOf("plain-converted.csv"));
    convertThroughExport(placedSamples(), pathOf("converted.csv"));
    if (bytesOf(pathOf("plain-converted.csv")) != bytesOf(pathOf("converted.csv")))
        throw std::runtime_error("the converted export differs from the plain loop");
}
} // namespace

BENCHMARK(plainLoop)->Unit(benchmark::kMillisecond)->Repetitions(3);
BENCHMARK(byBlocks)->Unit(benchmark::kMillisecond)->Repetitions(3);
BENCHMARK(byLines)->Unit(benchmark::kMillisecond)->Repetitions(3);
BENCHMARK(convertedPlainly)->Unit(benchmark::kMillisecond)->Repetitions(3);
BENCHMARK(converted)->Unit(benchmark::kMillisecond)->Repetitions(3);

int main(int argc, char** argv)
{
    checkSameFiles();
    return runWithLimits(argc, argv,
                         {{"byBlocks", "plainLoop", 1.0},
                          {"byLines", "plainLoop", 1.5},
                          {"converted", "convertedPlainly", 1.0}});
}
