#include <util/system/KusMemberPath.h>

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::ptrdiff_t LONGEST_ELEMENT = 255; // bytes, on every usual file system
constexpr int LONGEST_NAME = 4000;              // bytes; longer ones no program could open
constexpr int LONGEST_SHOWN = 5000;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(KusMemberPath)
};

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isElement(const char* begin, const char* end)
{
    return begin != end && !(end - begin == 1 && *begin == '.');
}

bool isUpwards(const char* begin, const char* end)
{
    return end - begin == 2 && begin[0] == '.' && begin[1] == '.';
}

/// Calls with the begin and the end of each part between separators, empty ones included.
template <class IsSeparator, class Call>
void forEachPart(const QByteArray& name, IsSeparator isSeparator, Call call)
{
    const char* const end = name.constEnd();
    for (const char* begin = name.constBegin();;) {
        const char* const stop = std::find_if(begin, end, isSeparator);
        call(begin, stop);
        if (stop == end)
            return;
        begin = stop + 1;
    }
}

bool isSlash(char c)
{
    return c == '/';
}

bool isAnySlash(char c)
{
    return c == '/' || c == '\\';
}

/// FNV-1a in 64 bits.
struct Hash {
    quint64 value = 14695981039346656037ULL;

    void add(char c) { value = (value ^ static_cast<unsigned char>(c)) * 1099511628211ULL; }
};

bool isAscii(const char* begin, const char* end)
{
    return std::all_of(begin, end, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void addAscii(Hash& hash, const char* begin, const char* end)
{
    for (; begin != end; ++begin)
        hash.add(*begin >= 'A' && *begin <= 'Z' ? static_cast<char>(*begin + ('a' - 'A')) : *begin);
}

void addFolded(Hash& hash, const char* begin, const char* end)
{
    const QByteArray bytes = QByteArray::fromRawData(begin, static_cast<int>(end - begin));
    const QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() != bytes) { // no UTF-8: no disk knows what to fold
        addAscii(hash, begin, end);
        return;
    }
    // By way of capitals, for Qt folds letter by letter, and some disks take "ß" for "ss".
    const QString folded = text.normalized(QString::NormalizationForm_D)
                               .toUpper()
                               .toCaseFolded()
                               .normalized(QString::NormalizationForm_C);
    const QByteArray foldedBytes = folded.toUtf8();
    for (const char c : foldedBytes)
        hash.add(c);
}
} // namespace

QList<QByteArray> KusMemberPath::split(const QByteArray& name)
{
    QList<QByteArray> elements;
    forEachPart(name, isSlash, [&elements](const char* begin, const char* end) {
        if (isElement(begin, end))
            elements.append(QByteArray(begin, static_cast<int>(end - begin)));
    });
    return elements;
}

QString KusMemberPath::findFault(const QByteArray& name)
{
    if (name.contains('\0'))
        return Texts::tr("Its name holds a NUL.");
    if (!name.isEmpty() && isAnySlash(name.at(0)))
        return Texts::tr("Its name is absolute.");
    bool isUp = false;
    bool isFirst = true;
    bool hasDrive = false;
    forEachPart(name, isAnySlash, [&](const char* begin, const char* end) {
        isUp = isUp || isUpwards(begin, end);
        if (isElement(begin, end) && std::exchange(isFirst, false))
            hasDrive = end - begin >= 2 && isLetter(begin[0]) && begin[1] == ':';
    });
    if (hasDrive)
        return Texts::tr("Its name begins with a drive.");
    if (isUp)
        return Texts::tr("Its name leads upwards with \"..\".");
    bool isLong = false;
    forEachPart(name, isSlash, [&isLong](const char* begin, const char* end) {
        isLong = isLong || end - begin > LONGEST_ELEMENT;
    });
    if (isLong)
        return Texts::tr("Its name has an element of more than %1 bytes.").arg(LONGEST_ELEMENT);
    if (name.size() > LONGEST_NAME)
        return Texts::tr("Its name has more than %1 bytes.").arg(LONGEST_NAME);
    return QString();
}

QString KusMemberPath::getShownText(const QByteArray& name)
{
    QString text = QString::fromUtf8(name.left(LONGEST_SHOWN));
    if (name.size() > LONGEST_SHOWN)
        text += QChar(0x2026); // an ellipsis
    for (QChar& c : text) {
        if (c.category() == QChar::Other_Control)
            c = QChar::ReplacementCharacter;
    }
    return text;
}

quint64 KusMemberPath::getFoldedHash(const QByteArray& name)
{
    Hash hash;
    forEachPart(name, isSlash, [&hash](const char* begin, const char* end) {
        if (!isElement(begin, end))
            return;
        hash.add('/');
        if (isAscii(begin, end))
            addAscii(hash, begin, end);
        else
            addFolded(hash, begin, end);
    });
    return hash.value;
}
