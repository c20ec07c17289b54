#include <util/system/KusArchiveInformation.h>

#include <basic/error/HbeProgrammingError.h>

#include <QtCore/QCoreApplication>

namespace
{
const QByteArray SEPARATOR(" = ");
const QByteArray BINARY_MARK("__bin__");

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(KusArchiveInformation)
};

/// Whether the key can be told from the value again.
bool isKey(const QByteArray& key)
{
    return !key.isEmpty() && !key.startsWith(' ') && !key.endsWith(' ') && !key.contains('\n') &&
           !key.contains(SEPARATOR);
}

QByteArray encodeValue(const QVariant& value)
{
    if (value.type() == QVariant::ByteArray)
        return BINARY_MARK + value.toByteArray().toBase64();
    return value.canConvert<QString>() ? value.toString().toUtf8().toBase64() : QByteArray();
}

QVariant decodeValue(const QByteArray& value)
{
    if (value.startsWith(BINARY_MARK))
        return QByteArray::fromBase64(value.mid(BINARY_MARK.size()));
    return QString::fromUtf8(QByteArray::fromBase64(value));
}
} // namespace

QByteArray KusArchiveInformation::encode(const QVariantMap& information)
{
    QByteArray data;
    for (auto entry = information.begin(); entry != information.end(); ++entry) {
        const QByteArray key = entry.key().toUtf8();
        if (!isKey(key))
            HBE_PROGRAMMING_ERROR(
                "system/KusArchiveInformation",
                Texts::tr("'%1' is no key of an archive's information.").arg(entry.key()));
        data += key + SEPARATOR + encodeValue(entry.value()) + '\n';
        if (data.size() > MAX_SIZE || information.size() > MAX_LINES)
            HBE_PROGRAMMING_ERROR("system/KusArchiveInformation",
                                  Texts::tr("The information of an archive is too long."));
    }
    return data;
}

QVariantMap KusArchiveInformation::decode(const QByteArray& data)
{
    QVariantMap information;
    for (int begin = 0; begin < data.size();) {
        const int found = data.indexOf('\n', begin);
        const int end = found < 0 ? data.size() : found;
        const QByteArray line = QByteArray::fromRawData(data.constData() + begin, end - begin);
        begin = end + 1;
        const int separator = line.indexOf(SEPARATOR);
        if (separator > 0)
            information.insert(QString::fromUtf8(line.left(separator)),
                               decodeValue(line.mid(separator + SEPARATOR.size())));
    }
    return information;
}
