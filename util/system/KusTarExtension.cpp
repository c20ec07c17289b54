#include "KusTarExtension.h"

#include "KusTarPax.h"

#include <util/system/KusTarRecord.h>

#include <algorithm>

namespace
{
bool readSize(const QByteArray& text, qint64& size)
{
    bool isNumber =
        std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (isNumber)
        size = text.toLongLong(&isNumber);
    return isNumber;
}
} // namespace

bool KusTarExtension::takePath(const QByteArray& data)
{
    return KusTarRecord::decodePaxRecord(data, name);
}

bool KusTarExtension::takePax(const QByteArray& data)
{
    QVector<KusTarPax::Entry> entries;
    bool isDecoded = KusTarPax::decode(data, entries);
    for (const KusTarPax::Entry& entry : qAsConst(entries)) {
        if (entry.key == "path")
            name = entry.value;
        else if (entry.key == "size")
            isDecoded = isDecoded && readSize(entry.value, size);
        else if (entry.key.startsWith("GNU.sparse."))
            isSparse = true;
    }
    return isDecoded;
}

void KusTarExtension::takeLongName(const QByteArray& data)
{
    name = data;
    while (name.endsWith('\0'))
        name.chop(1);
}
