#pragma once

#include "KuxXmlText.h"

#include <basic/error/HbeProgrammingError.h>
#include <util/utils/KuuMemento.h>
#include <util/xml/KuxXmlLimits.h>

#include <QtCore/QLine>
#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QVector>
#include <QtGui/QColor>

#include <utility>

/// The form of a memento in XML, once: how it is written through any sink and read through any
/// cursor. A sink makes a DOM or bytes, a cursor walks a DOM or bytes, so both roads agree.
///
/// A sink has: open(QLatin1String) and open(QString) with an XML name, setType(const char*),
/// text(QString, key), ascii(QByteArray), close().
/// A cursor has: enterChild() (the next child element of the current one becomes current),
/// leave() (the parent does), getName(), getType(), readText() (all text of the current element).
namespace KuxMementoXmlRules
{
enum class Type {
    NONE,
    UNKNOWN,
    BYTES,
    MAP,
    LIST,
    TEXTS,
    RECT,
    RECTF,
    SIZE,
    SIZEF,
    LINE,
    LINEF,
    POINT,
    POINTF,
    COLOR
};

constexpr std::pair<const char*, Type> TYPES[] = {
    {"QMap", Type::MAP},         {"QVariantList", Type::LIST}, {"QStringList", Type::TEXTS},
    {"QRect", Type::RECT},       {"QRectF", Type::RECTF},      {"QSize", Type::SIZE},
    {"QSizeF", Type::SIZEF},     {"QLine", Type::LINE},        {"QLineF", Type::LINEF},
    {"QPoint", Type::POINT},     {"QPointF", Type::POINTF},    {"QColor", Type::COLOR},
    {"QByteArray", Type::BYTES},
};

template <class Text>
Type typeFromText(const Text& text)
{
    for (const auto& [name, type] : TYPES) {
        if (text == QLatin1String(name)) {
            return type;
        }
    }
    return Type::UNKNOWN;
}

constexpr const char* SOURCE_PATH = "xml/KuxXmlMementoFile";
constexpr int REAL_DIGITS = 6;

inline QByteArray toAscii(int value)
{
    return QByteArray::number(value);
}
inline QByteArray toAscii(double value)
{
    return QByteArray::number(value, 'g', REAL_DIGITS);
}

/// A sink calls this when it opens an element: what is nested deeper could not be read back.
inline void checkDepth(size_t openElements)
{
    if (openElements >= size_t(KuxXmlLimits::DEPTH)) {
        HBE_PROGRAMMING_ERROR(SOURCE_PATH, QObject::tr("Memento is nested too deep."));
    }
}

template <class Sink, class Number>
void writeComponents(Sink& sink, const char* type,
                     std::initializer_list<std::pair<const char*, Number>> components)
{
    sink.setType(type);
    for (const auto& [name, value] : components) {
        sink.open(QLatin1String(name));
        sink.ascii(toAscii(value));
        sink.close();
    }
}

template <class Sink>
void writeValue(Sink& sink, const QVariant& value, const QString& key);

template <class Sink>
void writeMap(Sink& sink, const QVariantMap& map)
{
    sink.setType("QMap");
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        if (!it.key().isEmpty()) {
            sink.open(it.key());
            writeValue(sink, it.value(), it.key());
            sink.close();
        }
    }
}

// True when the variant is one of the geometric types.
template <class Sink>
bool writeGeometry(Sink& sink, const QVariant& v)
{
    const auto rect = [&](const char* type, auto r) {
        writeComponents(sink, type,
                        {std::make_pair("x", r.x()), std::make_pair("y", r.y()),
                         std::make_pair("width", r.width()), std::make_pair("height", r.height())});
    };
    const auto size = [&](const char* type, auto s) {
        writeComponents(sink, type,
                        {std::make_pair("width", s.width()), std::make_pair("height", s.height())});
    };
    const auto line = [&](const char* type, auto l) {
        writeComponents(sink, type,
                        {std::make_pair("x1", l.x1()), std::make_pair("y1", l.y1()),
                         std::make_pair("x2", l.x2()), std::make_pair("y2", l.y2())});
    };
    const auto point = [&](const char* type, auto p) {
        writeComponents(sink, type, {std::make_pair("x", p.x()), std::make_pair("y", p.y())});
    };
    switch (v.userType()) {
    case QMetaType::QRect:
        return rect("QRect", v.toRect()), true;
    case QMetaType::QRectF:
        return rect("QRectF", v.toRectF()), true;
    case QMetaType::QSize:
        return size("QSize", v.toSize()), true;
    case QMetaType::QSizeF:
        return size("QSizeF", v.toSizeF()), true;
    case QMetaType::QLine:
        return line("QLine", v.toLine()), true;
    case QMetaType::QLineF:
        return line("QLineF", v.toLineF()), true;
    case QMetaType::QPoint:
        return point("QPoint", v.toPoint()), true;
    case QMetaType::QPointF:
        return point("QPointF", v.toPointF()), true;
    default:
        return false;
    }
}

template <class Sink>
void writeColor(Sink& sink, const QColor& color)
{
    const QColor rgb = color.toRgb();
    writeComponents(sink, "QColor",
                    {std::make_pair("red", rgb.red()), std::make_pair("green", rgb.green()),
                     std::make_pair("blue", rgb.blue()), std::make_pair("alpha", rgb.alpha())});
}

template <class Sink>
void writeValue(Sink& sink, const QVariant& value, const QString& key)
{
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return;
    case QMetaType::QString:
        return sink.text(*static_cast<const QString*>(value.constData()), key);
    case QMetaType::Int:
        return sink.ascii(value.isNull() ? QByteArray() : QByteArray::number(value.toInt()));
    case QMetaType::Double:
        return sink.ascii(value.isNull() ? QByteArray() : KuxXmlText::toShortest(value.toDouble()));
    case QMetaType::QVariantMap:
        return writeMap(sink, *static_cast<const QVariantMap*>(value.constData()));
    case QMetaType::QVariantList: {
        sink.setType("QVariantList");
        for (const QVariant& item : *static_cast<const QVariantList*>(value.constData())) {
            sink.open(QLatin1String("QVariant"));
            writeValue(sink, item, key);
            sink.close();
        }
        return;
    }
    case QMetaType::QStringList: {
        sink.setType("QStringList");
        for (const QString& item : *static_cast<const QStringList*>(value.constData())) {
            sink.open(QLatin1String("QString"));
            sink.text(item, key);
            sink.close();
        }
        return;
    }
    case QMetaType::QColor:
        return writeColor(sink, value.value<QColor>());
    default:
        break;
    }
    if (writeGeometry(sink, value)) {
        return;
    }
    if (!value.canConvert<QString>()) {
        HBE_PROGRAMMING_ERROR(
            SOURCE_PATH, QObject::tr("Unsupported value type '%1' to insert in memento XML file.")
                             .arg(QString::fromLatin1(value.typeName())));
    }
    sink.text(value.isNull() ? QString() : value.toString(), key);
}

template <class Sink>
void writeBody(Sink& sink, const KuuMemento& memento)
{
    sink.open(QLatin1String("id"));
    sink.ascii(memento.getId().getUuid().toLatin1());
    sink.close();
    sink.open(QLatin1String("version"));
    sink.ascii(QByteArray::number(memento.getVersion()));
    sink.close();
    sink.open(QLatin1String("fields"));
    writeMap(sink, memento.getFields());
    sink.close();

    const QStringList relations = memento.getRelations();
    for (const QString& relation : relations) {
        const QList<KuuMemento> associations = memento.getAssociations(relation);
        for (const KuuMemento& associated : associations) {
            if (associated.isValid()) {
                sink.openRelation(relation);
                writeBody(sink, associated);
                sink.close();
            }
        }
    }
}

/// Calls `use(name, text)` for each child element of the current one.
template <class Cursor, class Use>
void readComponents(Cursor& cursor, Use use)
{
    while (cursor.enterChild()) {
        const QString name = cursor.getName();
        use(name, cursor.readText());
        cursor.leave();
    }
}

// The components of the current element, 0 where there is none; of several, the first counts.
template <class Number, class Cursor>
QVector<Number> readNumbers(Cursor& cursor, std::initializer_list<const char*> names)
{
    QVector<Number> values(int(names.size()), Number(0));
    QVector<bool> found(int(names.size()), false);
    readComponents(cursor, [&](const QString& name, const QString& text) {
        int i = 0;
        for (const char* candidate : names) {
            if (!found.at(i) && name == QLatin1String(candidate)) {
                found[i] = true;
                if constexpr (std::is_same_v<Number, int>) {
                    values[i] = text.toInt();
                } else {
                    values[i] = text.toDouble();
                }
            }
            ++i;
        }
    });
    return values;
}

template <class Cursor>
QVariant readGeometry(Cursor& cursor, Type type)
{
    const auto ints = [&](std::initializer_list<const char*> names) {
        return readNumbers<int>(cursor, names);
    };
    const auto reals = [&](std::initializer_list<const char*> names) {
        return readNumbers<double>(cursor, names);
    };
    switch (type) {
    case Type::RECT: {
        const auto n = ints({"x", "y", "width", "height"});
        return QRect(n[0], n[1], n[2], n[3]);
    }
    case Type::RECTF: {
        const auto n = reals({"x", "y", "width", "height"});
        return QRectF(n[0], n[1], n[2], n[3]);
    }
    case Type::SIZE: {
        const auto n = ints({"width", "height"});
        return QSize(n[0], n[1]);
    }
    case Type::SIZEF: {
        const auto n = reals({"width", "height"});
        return QSizeF(n[0], n[1]);
    }
    case Type::LINE: {
        const auto n = ints({"x1", "y1", "x2", "y2"});
        return QLine(n[0], n[1], n[2], n[3]);
    }
    case Type::LINEF: {
        const auto n = reals({"x1", "y1", "x2", "y2"});
        return QLineF(n[0], n[1], n[2], n[3]);
    }
    case Type::POINT: {
        const auto n = ints({"x", "y"});
        return QPoint(n[0], n[1]);
    }
    case Type::POINTF: {
        const auto n = reals({"x", "y"});
        return QPointF(n[0], n[1]);
    }
    case Type::COLOR: {
        const auto n = ints({"red", "green", "blue", "alpha"});
        const auto in = [](int c) { return qBound(0, c, 255); };
        return QColor(in(n[0]), in(n[1]), in(n[2]), in(n[3]));
    }
    default:
        return QVariant();
    }
}

template <class Cursor>
QVariant readValue(Cursor& cursor)
{
    const Type type = cursor.getType();
    switch (type) {
    case Type::NONE:
        return cursor.readText();
    case Type::BYTES:
        return cursor.readText().toUtf8();
    case Type::MAP: {
        QVariantMap map;
        while (cursor.enterChild()) {
            // Keys come in order from our own files: the end is where the next one belongs.
            const QString key = cursor.getName();
            map.insert(map.cend(), key, readValue(cursor));
            cursor.leave();
        }
        return map;
    }
    case Type::LIST: {
        QVariantList list;
        while (cursor.enterChild()) {
            list.append(readValue(cursor));
            cursor.leave();
        }
        return list;
    }
    case Type::TEXTS: {
        QStringList texts;
        readComponents(cursor, [&](const QString&, const QString& text) { texts.append(text); });
        return texts;
    }
    default:
        return readGeometry(cursor, type);
    }
}

/// The body of the current element, whose name is the relation. Of several parts of one name, the
/// first counts.
template <class Cursor>
KuuMemento readBody(Cursor& cursor)
{
    const QString relation = cursor.getName();
    QString uuid;
    QString version;
    QVariantMap fields;
    QList<KuuMemento> associations;
    bool hasId = false;
    bool hasVersion = false;
    bool hasFields = false;
    while (cursor.enterChild()) {
        const QString name = cursor.getTag();
        if (name == QLatin1String("id")) {
            const QString text = cursor.readText();
            uuid = std::exchange(hasId, true) ? uuid : text;
        } else if (name == QLatin1String("version")) {
            const QString text = cursor.readText();
            version = std::exchange(hasVersion, true) ? version : text;
        } else if (name == QLatin1String("fields")) {
            const QVariantMap map = readValue(cursor).toMap();
            fields = std::exchange(hasFields, true) ? fields : map;
        } else {
            associations.append(readBody(cursor));
        }
        cursor.leave();
    }

    KuuMemento memento(KuuId(relation, uuid));
    bool ok = false;
    const int number = version.toInt(&ok);
    memento.setVersion(ok ? number : KuuMemento::DEFAULT_VERSION);
    memento.setFields(fields);
    for (const KuuMemento& associated : qAsConst(associations)) {
        memento.appendAssociation(associated);
    }
    return memento;
}
} // namespace KuxMementoXmlRules
