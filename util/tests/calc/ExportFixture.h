#pragma once

#include <util/calc/KucExportData.h>
#include <util/calc/KucExportDataEncodingCsv.h>

#include <geos/data/HgdDataSetGrid.h>
#include <geos/data/HgdDataSetPoints.h>

#include <basic/data/HbdVariableEnum.h>
#include <basic/data/HbdVariableInteger.h>
#include <basic/data/HbdVariableReal.h>
#include <basic/data/HbdVariableReal32.h>
#include <basic/data/HbdVariableText.h>
#include <basic/unit/HbuUnitService.h>

#include "FileBytes.h"

inline HbuUnit unit(const HbuEUnitClass& unitClass, const char* key)
{
    return HbuUnitService::getInstance().getUnit(unitClass, key);
}

/// Delimited text that goes line by line, as an encoding without a way for blocks does.
class LineEncoding : public KucExportDataEncodingCsv
{
public:
    using KucExportDataEncodingCsv::KucExportDataEncodingCsv;
    void writeBlock(const KucExportBlock& block) override
    {
        KucAExportDataEncoding::writeBlock(block);
    }
};

/// Columns with their owner, and files to export them to.
class ExportFixture : public testing::Test
{
protected:
    template <class Variable>
    Variable& addColumn(const HbdVariableDetails& details,
                        std::vector<typename Variable::Value> values)
    {
        auto column = std::make_unique<Variable>(details);
        column->setValues(std::move(values));
        Variable& added = *column;
        m_columns.push_back(std::move(column));
        return added;
    }

    HgdDataSetPoints points() const
    {
        HgdDataSetPoints dataset(m_columns.empty() ? 0 : m_columns.front()->getCount());
        for (const auto& column : m_columns)
            dataset.addVariable(*column);
        return dataset;
    }

    QString path(const QString& name = QStringLiteral("export.csv")) const
    {
        return m_directory.filePath(name);
    }

    /// What the export writes into a new file.
    template <class Encoding = KucExportDataEncodingCsv>
    QByteArray write(KucExportData& exportData,
                     const KueCsvSeparator& separator = KueCsvSeparator::COMMA,
                     const KueDecimalSeparator& decimal = KueDecimalSeparator::DOT)
    {
        exportData.setEncodingStrategy(new Encoding(path(), separator, decimal));
        EXPECT_TRUE(exportData.runInCurrentThread()) << exportData.getErrorText().toStdString();
        return readFile();
    }
    QByteArray write(const HgdADataSet& dataset)
    {
        KucExportData exportData;
        exportData.setDataset(dataset);
        return write(exportData);
    }

    QByteArray readFile() const { return readBytes(path()); }

    /// Delimited text with the separators that come first; to be handed to an export.
    static KucExportDataEncodingCsv* csv(const QString& file)
    {
        return new KucExportDataEncodingCsv(file, KueCsvSeparator(), KueDecimalSeparator());
    }

    std::vector<std::unique_ptr<HbdAVariable>> m_columns;

private:
    QTemporaryDir m_directory;
};
