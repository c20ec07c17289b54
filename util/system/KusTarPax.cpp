#include "KusTarPax.h"

#include <basic/base/HbbDebug.h>

#include <QtCore/QCoreApplication>

#include <algorithm>

namespace
{
constexpr int MAX_LENGTH_DIGITS = 10; // more than any data in memory can have

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(KusTarPax)
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool refuse(const QString& message, int number)
{
    HbbDebug::printWarning(message.arg(number));
    return false;
}

bool isPadding(const char* begin, const char* end)
{
    return std::all_of(begin, end, [](char c) { return c == '\0'; });
}
} // namespace

QByteArray KusTarPax::encode(const Entry& entry)
{
    const QByteArray line = ' ' + entry.key + '=' + entry.value + '\n';
    int length = line.size() + QByteArray::number(line.size()).size();
    // Its own digits may make it longer by one more.
    length = line.size() + QByteArray::number(length).size();
    return QByteArray::number(length) + line;
}

bool KusTarPax::decode(const QByteArray& data, QVector<Entry>& entries)
{
    const char* const end = data.constEnd();
    const char* line = data.constBegin();
    for (int number = 1; line != end && !isPadding(line, end); ++number) {
        const char* const digitsEnd = std::find_if_not(line, end, &isDigit);
        const auto digits = digitsEnd - line;
        if (digits == 0)
            return refuse(Texts::tr("Invalid PAX format for record %1 (no length found)"), number);
        const qint64 length = digits > MAX_LENGTH_DIGITS
                                  ? end - line + 1
                                  : QByteArray(line, static_cast<int>(digits)).toLongLong();
        if (digitsEnd == end || *digitsEnd != ' ' || length > end - line || length < digits + 2)
            return refuse(Texts::tr("Invalid PAX format for record %1 (invalid record length)"),
                          number);
        const char* const last = line + length - 1;
        if (*last != '\n')
            return refuse(Texts::tr("Invalid PAX format for record %1 (missing end of line)"),
                          number);
        const char* const text = digitsEnd + 1;
        const char* const sign = std::find(text, last, '=');
        const char* const value = std::min(sign + 1, last);
        entries.append({QByteArray(text, static_cast<int>(sign - text)),
                        QByteArray(value, static_cast<int>(last - value))});
        line += length;
    }
    return true;
}
