#pragma once

#include <util/KuExport.h>
#include <util/utils/KuuId.h>
#include <util/utils/KuuMemento.h>

#include <QtCore/QDir>
#include <QtCore/QList>

class QByteArray;
class QDomDocument;
class QDomElement;
class HbeError;

/// Mementos as XML, one file per memento, "relation_uuid.xml" with the relation in lower case.
///
/// What comes back: texts, maps, lists, geometric values and colours as what they were; scalars
/// (numbers, booleans, dates, byte arrays) as their text; real coordinates with 6 significant
/// digits. A field with an empty key is not written.
///
/// Fields are named by their keys. A key that is no XML name (a variable's name with a blank, say)
/// is escaped character by character: "_x" and the UTF-16 unit in four capital hexadecimal digits
/// and "_" ("Cu total" is written `Cu_x0020_total`), and so is an underscore that begins what looks
/// like such an escape; names read back are unescaped. Relations likewise; an association whose
/// relation is "id", "version" or "fields" has its first letter escaped, too.
/// Characters that XML 1.0 cannot hold become U+FFFD, with a warning that names the key.
///
/// Files are written as a whole (KusSafeFile) and read within KuxXmlLimits. Whole files stream: the
/// bytes and the mementos are those of the DOM road (mementoToXml and KuxXml::saveXml,
/// KuxXml::readXml and xmlToMemento), which is taken by itself for files that are not of the form
/// that we write.
///
/// Errors beside those of KuxXml:
/// - HbeProgrammingError "Memento is not valid." (an id that is not valid may not be written) and
///   "Unsupported value type '%1' to insert in memento XML file.";
/// - HbeUserError "XML file '%1' is not valid.\nIts memento relation is '%2'.";
/// - HbeDiskError "Cannot remove file '%1'.".
namespace KuxXmlMementoFile
{
KELVANE_UTIL_EXPORT QDomDocument mementoToXml(const KuuMemento& memento);
KELVANE_UTIL_EXPORT KuuMemento xmlToMemento(const QDomDocument& document);
/// The bytes of the file, and back; `name` stands for the path in messages.
KELVANE_UTIL_EXPORT QByteArray mementoToBytes(const KuuMemento& memento);
KELVANE_UTIL_EXPORT KuuMemento bytesToMemento(const QByteArray& bytes, const QString& name);

/// Appends the body to `element`; associated mementos whose id is not valid are left out.
KELVANE_UTIL_EXPORT void saveMementoIntoDocument(QDomDocument& document, QDomElement& element,
                                                 const KuuMemento& memento);
KELVANE_UTIL_EXPORT KuuMemento readMementoFromDocument(const QDomElement& element);
KELVANE_UTIL_EXPORT void saveValue(QDomDocument& document, QDomElement& element,
                                   const QVariant& value);
KELVANE_UTIL_EXPORT QVariant readValue(const QDomElement& element);

KELVANE_UTIL_EXPORT void save(const QDir& directory, const KuuMemento& memento);
KELVANE_UTIL_EXPORT void save(const QString& path, const KuuMemento& memento);
/// Saves many and waits for the disk once. Every file is replaced as a whole; an error leaves each
/// file either old or new, and says which one failed.
KELVANE_UTIL_EXPORT void save(const QDir& directory, const QList<KuuMemento>& mementos);

KELVANE_UTIL_EXPORT KuuMemento read(const QDir& directory, const KuuId& id);
/// Any memento file, whatever its relation.
KELVANE_UTIL_EXPORT KuuMemento read(const QString& path);

/// The text of a field, without reading those behind it (fields stand in the order of their keys)
/// and whatever is wrong with the rest of the file. Empty where there is none.
KELVANE_UTIL_EXPORT QString peekText(const QDir& directory, const KuuId& id, const QString& key);
/// What an error of reading says, for people: without the place in our sources that a programming
/// error names, for it is the file that is at fault.
KELVANE_UTIL_EXPORT QString getReason(const HbeError& error);

/// Where in a text the first character stands that a file cannot hold, for those to whom U+FFFD in
/// its place is another text; -1 for none.
KELVANE_UTIL_EXPORT int findUnwritable(const QString& text);

KELVANE_UTIL_EXPORT bool exists(const QDir& directory, const KuuId& id);
KELVANE_UTIL_EXPORT void destroy(const QDir& directory, const KuuId& id);
/// The ids of the relation's files, by file name; files whose name holds no uuid are left out.
KELVANE_UTIL_EXPORT QList<KuuId> getIdList(const QDir& directory, const QString& relation);

/// The name of the memento's file, without a directory.
KELVANE_UTIL_EXPORT QString getFileName(const KuuId& id);
} // namespace KuxXmlMementoFile
