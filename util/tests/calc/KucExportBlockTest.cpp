#include "ExportFixture.h"

namespace
{
const char* const ALPHABET = "aZ09 ,;.\"\n\r\té€\xF0\x9F\x98\x80";

class KucExportBlockTest : public ExportFixture
{
protected:
    int below(int end) { return int(m_random() % unsigned(end)); }

    template <class Value>
    std::vector<Value> values(int count, Value undefined, const std::function<Value()>& make)
    {
        std::vector<Value> result;
        for (int i = 0; i < count; ++i)
            result.push_back(below(6) == 0 ? undefined : make());
        return result;
    }

    QString text()
    {
        const QString alphabet = QString::fromUtf8(ALPHABET);
        QString result("");
        for (int i = below(9); i > 0; --i)
            result += alphabet.at(below(alphabet.size())); // half a surrogate pair, too
        return result;
    }

    double number()
    {
        switch (below(4)) {
        case 0:
            return std::uniform_real_distribution<double>(-1e6, 1e6)(m_random);
        case 1:
            return double(below(2000) - 1000) / 8;
        case 2:
            return std::ldexp(double(below(1000)), below(600) - 300);
        default:
            return below(2) ? -0.0 : std::numeric_limits<double>::infinity();
        }
    }

    HbdVariableDetails randomDetails(int column)
    {
        HbdVariableDetails details(text() + QString::number(column));
        details.format = HbbEFormat::fromValue(below(HbbEFormat::count()));
        details.precision = below(25) - 1;
        const QVector<HbuUnit> units =
            HbuUnitService::getInstance().getUnits(HbuEUnitClass::LENGTH);
        if (below(2) == 0) {
            details.unit = units.at(below(units.size()));
            details.displayUnit = units.at(below(units.size()));
        }
        return details;
    }

    void addRandomColumn(int column, int count)
    {
        const HbdVariableDetails details = randomDetails(column);
        switch (below(6)) {
        case 0:
            addColumn<HbdVariableReal>(
                details, values<double>(count, HbbGlobal::D_FFFF, [this] { return number(); }));
            break;
        case 1:
            addColumn<HbdVariableReal32>(details,
                                         values<float>(count, HbdVariableReal32::getUndefined(),
                                                       [this] { return float(number()); }));
            break;
        case 2:
            addColumn<HbdVariableInteger>(details, values<qint64>(count, HbbGlobal::I_FFFF, [this] {
                                              return qint64(m_random()) / 3;
                                          }));
            break;
        case 3:
            addColumn<HbdVariableText>(
                details, values<QString>(count, QString(), [this] { return text(); }));
            break;
        case 4: {
            HbdEnumCatalog catalog;
            for (int i = below(10); i > 0; --i)
                catalog.addCategory(quint16(below(20)), text());
            addColumn<HbdVariableEnum>(
                details, values<quint16>(count, 0xFFFF, [this] { return quint16(below(25)); }))
                .setCatalog(catalog);
            break;
        }
        default:
            m_columns.push_back(HbdAVariable::create(HbdVariableDetails(
                details.name, below(2) ? HbdEVarType::DATE : HbdEVarType::COLOR)));
            m_columns.back()->resize(count);
            for (int i = below(count); i < count; ++i)
                m_columns.back()->setVariant(i, below(2) ? QVariant("2001-02-03T04:05:06.789Z")
                                                         : QVariant("#102030"));
        }
    }

    std::mt19937_64 m_random{11};
};
} // namespace

TEST_F(KucExportBlockTest, BlocksAndLinesWriteTheSameBytes)
{
    for (int round = 0; round < 300; ++round) {
        m_columns.clear();
        const int count = 1 + below(200);
        for (int column = 1 + below(8); column > 0; --column)
            addRandomColumn(column, count);
        KucExportData exportData;
        exportData.setDataset(points());
        exportData.setUndefString(below(2) ? text() : QString());
        exportData.setFullPrecision(below(4) == 0);
        const KueCsvSeparator separator = KueCsvSeparator::fromValue(below(2));
        const KueDecimalSeparator decimal = KueDecimalSeparator::fromValue(below(2));
        ASSERT_EQ(write(exportData, separator, decimal),
                  write<LineEncoding>(exportData, separator, decimal))
            << "round " << round;
    }
}
