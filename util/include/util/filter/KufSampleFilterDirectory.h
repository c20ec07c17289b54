#pragma once

#include <util/filter/KufSampleFilter.h>
#include <util/xml/KuxMementoDirectory.h>

/// The sample filters that a project directory keeps, by name ("samplefilter_UUID.xml"), beside the
/// datasets.
class KELVANE_UTIL_EXPORT KufSampleFilterDirectory : public KuxMementoDirectory
{
    Q_DECLARE_TR_FUNCTIONS(KufSampleFilterDirectory)

public:
    explicit KufSampleFilterDirectory(const QString& path);

    /// The filter that was saved, with its identity.
    KufSampleFilter read(const KuuId& id) const;

    /// The filter of that name; a user error, which lists the names there are, when there is none.
    KufSampleFilter read(const QString& name) const;

    /// Saves the filter, under the identity `id` instead of its own where that is valid. A user
    /// error when the name is empty, another filter has it, a text holds a character that no file
    /// can hold, or the directory does not exist.
    void save(const KufSampleFilter& filter, const KuuId& id = KuuId()) const;

    /// Saves the filter in the place of the one that has its name, if there is one.
    void replace(const KufSampleFilter& filter) const;

    /// Deletes the file; false when there is none.
    bool remove(const KuuId& id) const;

private:
    QString _readNameOf(const KuuId& id) const override;
};
