#pragma once

#include <util/KuExport.h>

#include <QtCore/QList>
#include <QtCore/QString>

class QByteArray;
class QDomDocument;
class QDomElement;
class QDomNode;
template <class Key, class Value>
class HbbOrderedMap;

/// Reading and writing XML files through the DOM, elements of text, scalar values as text (C
/// locale) and look-ups. Stateless; any thread may use it on its own document.
class KELVANE_UTIL_EXPORT KuxXml
{
public:
    /// Loads `path`, namespace processing on. Errors:
    /// - HbeUserError "Cannot find XML file '%1'.";
    /// - HbeError "Cannot open XML file '%1' for reading.";
    /// - HbeProgrammingError "Error while parsing XML file '%1' at line %2/column %3: '%4'.", also
    ///   for a file beyond KuxXmlLimits and for bytes that are no text in the file's encoding.
    /// A file named "Itz" is repaired on the way: U+0007 reads as U+00A7; the repaired text goes
    /// through the file `path`.patched (HbeError "Cannot open XML file '%1' for writing.").
    static void readXml(const QString& path, QDomDocument& document);
    /// The same for bytes in memory; `name` stands for the path in messages.
    static void readXml(const QByteArray& bytes, const QString& name, QDomDocument& document);

    /// Replaces `path` as a whole (KusSafeFile): UTF-8, indentation 4. Errors:
    /// - HbeError "Cannot create or open for writing the XML file '%1'.";
    /// - HbeDiskError "Cannot write/flush XML file into '%1'."; the old file stands.
    static void saveXml(const QString& path, const QDomDocument& document);
    static int getIndent() { return 4; }

    /// A new element; an empty text gives no child. Here and below, a character that XML cannot
    /// hold becomes U+FFFD, with a warning: the file would not be read again.
    static QDomElement createTextNode(QDomDocument& document, const QString& name,
                                      const QString& text);
    static QDomElement createCDataNode(QDomDocument& document, const QString& name,
                                       const QString& text);
    /// CDATA when `text` has a line feed or is white space only, which a reader would drop.
    static QDomElement createTextOrCDATANode(QDomDocument& document, const QString& name,
                                             const QString& text);
    /// The data of the first child when that is text or CDATA, else empty.
    static QString getValue(const QDomElement& element);
    /// Replaces the data of a first child that is text, or gives an empty element a text; does
    /// nothing to any other element.
    static void setValue(QDomElement& element, const QString& text);

    static QString encodeBool(bool value);
    /// "true" or "yes", "false" or "no", in any case; any other text gives false and sets `ok`
    /// (which may be null) to false.
    static bool decodeBool(const QString& text, bool* ok = nullptr);
    static bool decodeBool(const QString& text, bool defaultValue);
    static bool decodeBool(const QDomElement& element, const QString& attribute,
                           bool* ok = nullptr);
    static bool decodeBool(const QDomElement& element, const QString& attribute, bool defaultValue);

    /// The shortest text that reads back as exactly `value`.
    static QString encodeDouble(double value);
    static double decodeDouble(const QString& text, double defaultValue);
    static int decodeInt(const QString& text, int defaultValue);
    static int decodeInt(const QDomElement& element, const QString& attribute, int defaultValue);
    static qint16 decodeInt16(const QString& text, qint16 defaultValue);
    static quint64 decodeUint64(const QString& text, quint64 defaultValue);

    /// The child elements in document order, tag to text.
    static HbbOrderedMap<QString, QString> loadFields(const QDomElement& element);
    static void saveFields(QDomDocument& document, QDomElement& element,
                           const HbbOrderedMap<QString, QString>& fields);

    /// Walks down `path`, names separated by "/" (empty ones are skipped), each the first child
    /// element of that name; null when a step is missing. An empty path gives `element` itself.
    static QDomElement getElementFromPath(const QDomElement& element, const QString& path);
    /// The first descendant in document order (only children without `recursive`) that has the tag
    /// and the attribute value; an empty tag matches every element. `element` itself is not tried.
    static QDomElement getElementFromAttribute(const QDomElement& element, const QString& tag,
                                               const QString& attribute, const QString& value,
                                               bool recursive);
    /// All of them, in document order.
    static QList<QDomElement> getElementsFromAttribute(const QDomElement& element,
                                                       const QString& tag, const QString& attribute,
                                                       const QString& value, bool recursive);
    static QList<QDomElement> getElementsFromTag(const QDomElement& element, const QString& tag,
                                                 bool recursive);
    /// Takes `node` out of the tree and puts its children in its place, in order.
    static void removeNodeLevel(QDomNode node);
};
