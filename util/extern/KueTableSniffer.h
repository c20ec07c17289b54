#pragma once

#include "KueTableMissing.h"
#include "KueTableTokenizer.h"

#include <util/extern/KueTableResult.h>

#include <QtCore/QCoreApplication>

#include <string>
#include <string_view>
#include <vector>

class KueTableSource;

/// How a file is laid out: what its first lines say.
struct KueTableLayout {
    KueTableResult::Form form = KueTableResult::Form::DELIMITED;
    char separator = ',';
    char decimal = '.';
    bool hasHeader = true;
    bool hasNumberInHeader = false; ///< perhaps there is no header after all
    std::string title;
    std::vector<std::string> names; ///< as the file spells them; made up where there is no header
    std::vector<bool> quotedTexts;  ///< columns whose cells are quoted without need
    std::size_t headerSize = 0;     ///< bytes before the first row
    qint64 firstLine = 1;           ///< the number of the line of the first row
};

/// Recognises the layout of a file by its first block.
class KueTableSniffer
{
    Q_DECLARE_TR_FUNCTIONS(KueTableSniffer)

public:
    /// Borrows all three.
    KueTableSniffer(KueTableSource& source, const KueTableOptions& options,
                    const KueTableMissing& missing);

    /// Raises HbeUserError when there is no header that can be read.
    KueTableLayout sniff();

private:
    using Record = std::vector<KueTableTokenizer::Cell>;

    bool findGeoEas();
    char chooseSeparator() const;
    void readHeader();
    void nameColumns(const Record& header);
    void examineRows();
    void chooseDecimal(const KueTableTokenizer& tokenizer);
    void findQuotedTexts(const KueTableTokenizer& tokenizer);
    bool isNumber(std::string_view text) const;

    KueTableTokenizer makeTokenizer(char separator) const;

    KueTableSource& m_source;
    const KueTableOptions& m_options;
    const KueTableMissing& m_missing;
    KueTableLayout m_layout;
};
