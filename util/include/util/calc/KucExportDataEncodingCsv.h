#pragma once

#include <util/calc/KucAExportDataEncoding.h>
#include <util/extern/KueCsvSeparator.h>
#include <util/extern/KueCsvWriter.h>
#include <util/extern/KueDecimalSeparator.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

/// Writes an export as delimited text: UTF-8, a line feed after each row, texts in double quotes
/// where they need them. Lines gather in memory and go to the file by the megabyte, always whole.
/// A file that cannot be written (a full disk) is an HbeUserError.
///
/// Nothing keeps a decimal comma from meeting a comma as separator: choose the semicolon with it.
class KELVANE_UTIL_EXPORT KucExportDataEncodingCsv : public KucAExportDataEncoding
{
    Q_DECLARE_TR_FUNCTIONS(KucExportDataEncodingCsv)

public:
    KucExportDataEncodingCsv(const QString& path, const KueCsvSeparator& separator,
                             const KueDecimalSeparator& decimal);
    /// Abandons a file that is still open.
    ~KucExportDataEncodingCsv() override;

    void openFile() override;
    /// Does nothing when no file is open.
    void closeFile() override;
    /// A file that is not open is a programming error.
    void writeLine(const QList<KueFormatedVariant>& row) override;

    /// The same bytes as line by line, without a variant for a number or a text.
    void writeBlock(const KucExportBlock& block) override;
    void abandonFile() override;

private:
    void checkOpen() const;
    void endLine();
    void flush();

    QFile m_file;
    KueCsvWriter m_writer;
};
