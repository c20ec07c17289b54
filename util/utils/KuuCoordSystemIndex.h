#pragma once

#include <util/utils/KuuCoordSystemSearch.h>

#include <QtCore/QString>

#include <vector>

/// All systems of the PROJ library's database, prepared for searching. Read on first use, by
/// whichever thread is first, and never changed.
class KuuCoordSystemIndex
{
public:
    struct Record {
        KuuCoordSystemSearch::Entry entry;
        QString name;       ///< folded, as the next ones
        QString joinedName; ///< without blanks
        QString area;
        QString code;
        QString authority;
        bool isCommon = false; ///< in the shipped catalog
        double size = 0.;      ///< of the area
        int place = 0;         ///< the order of the database
    };

    static const KuuCoordSystemIndex& getInstance();
    const std::vector<Record>& getRecords() const { return m_records; }

    /// Lower case without accents; a blank for everything that is neither letter nor digit.
    static QString fold(const QString& text);

private:
    KuuCoordSystemIndex();
    void read(const char* authority);
    void setModes();
    void setCommon();

    std::vector<Record> m_records;
};
