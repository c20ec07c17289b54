#pragma once

#include <util/KuExport.h>

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtXml/QDomDocument>

/// A small key/value store in one XML file, addressed by paths ("database/version"; empty steps are
/// skipped). Values are texts of KusSerializer. Reading and writing follow the last element of a
/// name, so a file edited by hand with a repeated element is governed by its last occurrence.
/// Names that are no XML names are escaped as KuxXmlMementoFile escapes keys.
///
/// With autosave (the default) every change is written at once, the file replaced as a whole. One
/// thread at a time uses a store.
class KELVANE_UTIL_EXPORT KuxDom
{
public:
    KuxDom(const QString& rootName, const QString& filePath);

    /// A `path` that is not empty replaces the stored one. A missing file is created when `create`
    /// is set, else the store is not valid, without error. Errors of KuxXml::readXml, and HbeError
    /// "DOM document load from XML file '%1' is not valid." when the root element is another.
    void load(const QString& path = QString(), bool create = false);
    void save();

    /// True when a document with the right root element is loaded.
    bool isValid() const;
    /// True when the file is newer than at the last load or save of this store.
    bool isModifiedOnDisk() const;

    QVariant get(const QString& path) const { return get(path, QVariant()); }
    /// `defaultValue` when a step of the path is missing, or the path is empty.
    QVariant get(const QString& path, const QVariant& defaultValue) const;
    /// Answers whether the stored text changed. Setting the empty text where there is no element
    /// changes nothing. On a store that is not valid: false.
    bool set(const QString& path, const QVariant& value);

    /// A list is one element per item, named `itemTag`, under the last element of `path`.
    QVariantList getList(const QString& path, const QString& itemTag) const;
    bool setList(const QString& path, const QString& itemTag, const QVariantList& values);
    /// A map is one element per entry, named by its key.
    QVariantMap getMap(const QString& path) const;
    bool setMap(const QString& path, const QVariantMap& values);
    /// A list of maps is one element per map, named `itemTag`.
    QList<QVariantMap> getMapList(const QString& path, const QString& itemTag) const;
    bool setMapList(const QString& path, const QString& itemTag, const QList<QVariantMap>& values);

    /// Removes the last element of the path with all below it; false when there is none.
    bool removeElement(const QString& path);

    void setAutosave(bool autosave) { m_autosave = autosave; }
    bool isAutosave() const { return m_autosave; }
    const QString& filePath() const { return m_filePath; }
    /// The document as XML text.
    QString toString() const;

private:
    QDomElement find(const QString& path) const;
    QDomElement findOrCreate(const QString& path);
    /// Removes the children named `tag` (all elements when it is empty).
    void removeChildren(QDomElement parent, const QString& tag);
    void appendMap(QDomElement parent, const QVariantMap& values);
    void changed();

    bool m_autosave = true;
    QString m_rootName;
    QString m_filePath;
    QDomDocument m_document;
    QDateTime m_lastModified;
};
