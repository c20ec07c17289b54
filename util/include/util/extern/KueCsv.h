#pragma once

#include <util/KuExport.h>
#include <util/extern/KueCsvSeparator.h>
#include <util/extern/KueDecimalSeparator.h>
#include <util/extern/KueFormatedVariant.h>

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtCore/QStringView>

/// The codec of delimited text: one row in, its fields out; a row of typed values in, one line of
/// UTF-8 out. A value; reading it from several threads is safe. For whole tables use KueCsvWriter,
/// which writes the same bytes into one growing buffer.
class KELVANE_UTIL_EXPORT KueCsv
{
    Q_DECLARE_TR_FUNCTIONS(KueCsv)

public:
    /// Comma, runs of separators collapsed, the double quote, decimal point.
    KueCsv();

    /// With `collapse`, a run of separators counts as one, but for one that begins the row. A null
    /// separator is a programming error; a null quote switches quoting off.
    KueCsv(const QChar& separator, bool collapse, const QChar& quote, const QChar& decimal);

    /// The fields of one row, without their quotes and the white space around them; at least one.
    /// The row is trimmed first: one that is separated by tabs loses the empty fields at its ends.
    QStringList parseDelimitedRow(QStringView row) const;

    /// The bytes of one value: a text is quoted where it must be, a number is not, a null value is
    /// empty. The decimal character stands in for the point of reals only, and nothing keeps it
    /// from being the separator, too.
    QByteArray encodeValue(const KueFormatedVariant& cell) const;

    /// The bytes of the values with the separator between them; no end of line.
    QByteArray encodeValues(const QList<KueFormatedVariant>& row) const;

    QChar getSeparator() const { return m_separator; }
    bool isCollapsing() const { return m_collapse; }
    QChar getQuote() const { return m_quote; }
    QChar getDecimal() const { return m_decimal; }

private:
    friend class KueCsvWriter;

    QString cleaned(QStringView field) const;

    QChar m_separator;
    bool m_collapse;
    QChar m_quote;
    QString m_doubleQuote;
    QChar m_decimal;
    QByteArray m_separatorBytes; // these four: UTF-8, made once
    QByteArray m_quoteBytes;
    QByteArray m_doubleQuoteBytes;
    QByteArray m_decimalBytes;
};
