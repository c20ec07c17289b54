#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDataTableHeader.h>
#include <util/dataset/KudDataTableModif.h>
#include <util/dataset/KudFlags.h>
#include <util/observable/KuoAObservable.h>

#include <basic/data/HbdSpan.h>
#include <basic/data/HbdVarRoleFlags.h>
#include <basic/data/HbdVarTypeFlags.h>
#include <basic/interval/HbiIntervalIntSmallO64Disjoint.h>

#include <QtCore/QMap>
#include <QtCore/QVariant>
#include <QtCore/QVector>

#include <memory>

class HbdANumericVariable;
class HbdAVariable;
class HbdDataTable;
class HbdVariableText;
class KudDatasetVariableFilter;
class KudSelector;
class KudTableModel;
class KuuCoordSystem;

/// A table: one row a sample, one column a variable. The public operations check the permission
/// flags, have the concrete table do the work, and tell observers, views and selections. A refused
/// operation is silent: it returns false, -1 or an empty variable and changes nothing.
///
/// Two ways to write: cell by cell, for views and people; whole columns and blocks, with one
/// notice for all, for imports and calculations.
///
/// The table owns its columns, its model, its mask and its highlight. Main thread only; another
/// thread may read the columns while nobody edits the table.
class KELVANE_UTIL_EXPORT KudADataTable : public KuoAObservable<KudDataTableModif>
{
public:
    using SampleValues = QMap<KudDatasetVariable, QVariant>;
    using SampleRow = QVector<QVariant>; ///< a cell for each variable, in the order of the header

    KudADataTable(const KudADataTable&) = delete;
    KudADataTable& operator=(const KudADataTable&) = delete;

    virtual ~KudADataTable();
    virtual bool isValid() const = 0;

    /// The class's type tag.
    virtual QByteArray getType() const = 0;

    /// The name that the table has in its dataset, and the support name of its variables.
    virtual QString getName() const = 0;

    /// The component of a compound variable that has this role, or a null text.
    virtual QString getComponentNameFromRole(const KudDatasetVariable& variable,
                                             const HbdEComponentRole& role) const;
    virtual bool hasSample() const = 0;
    virtual int getSampleCount() const = 0;

    /// Coordinates are in this system; nothing is converted. Observers hear of a change.
    virtual void setCoordSystem(const KuuCoordSystem& coordSystem) = 0;
    virtual KuuCoordSystem getCoordSystem() const = 0;
    virtual HbuUnit getCoordinateUnit() const = 0;
    virtual HbuUnit getElevationUnit() const = 0;

    /// All variables are when ReadOnlyValues is set; else those of a read-only role or tag. It
    /// keeps views from editing and refuses nothing.
    virtual bool isVariableReadonly(const KudDatasetVariable& variable) const;

    /// \name Variables
    /// @{
    int getVariableCount() const;
    KudDatasetVariable getVariableAt(int column) const;            ///< empty outside of the columns
    int getVariableRank(const KudDatasetVariable& variable) const; ///< its column, or -1

    /// The variable of that full name, else the first of that plain name, else an empty one.
    KudDatasetVariable getVariableFromName(const QString& name) const;
    KudDatasetVariableList getVariables(const HbdVarTypeFlags& types) const;
    KudDatasetVariableList getVariables(const KudDatasetVariableFilter& filter) const;
    KudDatasetVariableList getVariables(const QString& support) const;
    bool containsVariable(const KudDatasetVariable& variable) const;
    bool hasVariable() const { return getVariableCount() > 0; }
    bool isVariableValid(const KudDatasetVariable& variable,
                         const KudDatasetVariableFilter& filter) const;
    HbdVariableDetails getDetails(const KudDatasetVariable& variable) const;
    HbdEnumCatalog getVariableCatalog(const KudDatasetVariable& variable) const;
    HbdECompoundType getCompoundType(const KudDatasetVariable& variable) const;
    HbdCompoundDetails getCompoundDetails(const KudDatasetVariable& variable) const;
    bool isCompound(const KudDatasetVariable& variable) const;
    HbbTags getVariableTags(const KudDatasetVariable& variable) const;
    HbbTags getSupportTags() const;
    bool hasSupportTag(const QString& tag) const;
    bool hasTagVariable(const QString& tag) const; ///< some variable carries the tag
    /// @}

    /// \name Structural variables: those with a role. Hidden roles have none.
    /// @{
    KudDatasetVariable getStructuralVariable(const HbdEVarRole& role) const;
    HbdEVarRole getStructuralRole(const KudDatasetVariable& variable) const;
    bool hasStructuralVariable(const HbdEVarRole& role) const;
    void hideStructuralRoles(const HbdVarRoleFlags& roles);
    /// @}

    /// \name Values: borrowed columns, null where there is none of the kind asked for
    /// @{
    const HbdAVariable* readValues(const KudDatasetVariable& variable) const;
    const HbdANumericVariable* readNumericValues(const KudDatasetVariable& variable) const;
    const HbdANumericVariable* readNumericValues(const HbdEVarRole& role) const;
    const HbdVariableText* readStringValues(const KudDatasetVariable& variable) const;
    const HbdVariableText* readStringValues(const HbdEVarRole& role) const;
    const HbdAVariable* readComponentValues(const KudDatasetVariable& variable,
                                            const HbdEComponentRole& role) const;
    const HbdANumericVariable* readNumericComponentValues(const KudDatasetVariable& variable,
                                                          const HbdEComponentRole& role) const;
    const HbdANumericVariable* readXCoordinate() const;
    const HbdANumericVariable* readYCoordinate() const;
    const HbdANumericVariable* readZCoordinate() const;

    /// X and Y exist and have no undefined value.
    bool checkCoordinates() const;

    /// X never falls (and with `strictly` always rises) along the samples and is defined for all.
    bool isSortedByXCoordinate(bool strictly) const;
    /// @}

    /// \name Editing variables
    /// @{
    /// Adopts a column; empty when it is refused (not permitted, another length, a name that is
    /// taken), and then the column stays with the caller.
    KudDatasetVariable addVariable(HbdAVariable* variable);
    KudDatasetVariable addVariable(std::unique_ptr<HbdAVariable> variable);
    KudDatasetVariable createVariable(const HbdVariableDetails& details);

    /// True when deleting is permitted, whether or not the variable was there: callers ask for
    /// permission, and a variable that is not there needs no deleting.
    bool deleteVariable(const KudDatasetVariable& variable);
    bool renameVariable(const KudDatasetVariable& variable, const QString& name);
    bool setDetails(const KudDatasetVariable& variable, const HbdVariableDetails& details);
    /// @}

    /// \name Editing samples and cells
    /// @{
    /// The rank of the new sample, or -1 (as below, also when ranks would leave 32 bits). A row may
    /// be shorter than the header.
    int createSample(const SampleValues& values);
    int createSample(const SampleRow& row);

    /// Many samples with one notice; the rank of the first, or -1. `defaults` fill the variables
    /// for which a row has no cell or an invalid one.
    int createSamples(const QList<SampleRow>& rows, const SampleValues& defaults = SampleValues());

    /// Appends the samples of whole columns, matched by full name, with one notice; the rank of the
    /// first, or -1.
    int appendSamples(const HbdDataTable& samples);

    bool deleteSample(int rank);

    /// Deletes nothing at all unless every interval lies within the samples. One notice, which
    /// speaks of the ranks before the deletion.
    bool deleteSamples(const HbiIntervalIntSmallDisjoint& ranks);
    bool deleteAllSamples(); ///< false on an empty table

    /// Writes cells of one sample; refused for a rank outside of the table.
    bool updateValue(const KudDatasetVariable& variable, int rank, const QVariant& value);
    bool updateValues(int rank, const SampleValues& values);

    /// Writes the values of a column, or a part of it, over those from `firstRank` on, with one
    /// notice. Refused unless they fit into the table and the kinds of the columns are the same.
    bool updateColumn(const KudDatasetVariable& variable, int firstRank,
                      const HbdAVariable& values);

    /// The same from plain numbers in the storage unit, into a numeric variable.
    bool updateColumn(const KudDatasetVariable& variable, int firstRank,
                      HbdSpan<const double> numbers);

    /// Pairs positional cells with the variables of the header, on top of the defaults. With
    /// `onlyValid`, an invalid cell leaves the default as it is.
    SampleValues mapSampleValues(const SampleRow& row, bool onlyValid,
                                 const SampleValues& defaults) const;
    /// @}

    /// \name Settings
    /// @{
    void addReadonlyRoles(const HbdVarRoleFlags& roles);
    void addReadonlyTags(const QStringList& tags);
    void setFlag(Ku::DatasetFlag flag, bool on = true);
    void setFlags(Ku::DatasetFlags flags);
    Ku::DatasetFlags getFlags() const;
    bool testFlag(Ku::DatasetFlag flag) const;

    /// The sub-range of the samples that users of the table restrict themselves to; null for all.
    /// The table's own ranks stay as they are.
    void setInterval(const HbiIntervalIntSmallO64Disjoint& interval);
    void removeInterval();
    const HbiIntervalIntSmallO64Disjoint* getInterval() const;

    KudSelector* getMask();
    KudSelector* getHighlight();
    const KudSelector* getMaskConst() const;
    const KudSelector* getHighlightConst() const;
    KudTableModel* getModel() const;

    /// Forgets the header and whatever the concrete table caches.
    void clearCache();
    /// @}

    /// The one shared table with nothing in it.
    static KudADataTable* staticEmptyDataTable();

    /// \name Notices: one each
    /// @{
    void notifyVariableAdded(const KudDatasetVariable& variable) const;
    void notifyVariableRemoved(const KudDatasetVariable& variable) const;

    /// `reasons` are of those that speak of a variable's modification.
    void notifyVariableModified(const KudDatasetVariable& variable, KudTableModif::Reasons reasons,
                                const HbdVariableDetails& details) const;
    void notifySampleAdded(const HbiIntervalIntSmallDisjoint& ranks) const;
    void notifySampleRemoved(const HbiIntervalIntSmallDisjoint& ranks) const;
    void notifyValueChanged(const KudDatasetVariable& variable,
                            const HbiIntervalIntSmallDisjoint& ranks) const;
    void notifyHighlightChanged() const;
    void notifyMaskChanged() const;
    void notifySelectionChanged(KudTableModif::Reason reason) const;
    void notifyReset() const;
    /// @}

protected:
    KudADataTable();

    /// \name For concrete tables, around their changes
    /// @{
    void _beginAppendSamples(int count) const;
    void _endAppendSamples() const;
    void _beginResetTable() const;
    void _endResetTable() const;
    void _touch() const; ///< everything may have changed: the model is reset, observers are told
    void _tableValuesChanged(const HbiIntervalIntSmall& ranks,
                             const KudDatasetVariable& variable) const;
    void _updateHeader() const;
    void _clearHeaderCache() const;
    KudDataTableHeader* _editHeader() const; ///< for a small change in place; null when not valid
    void _clearValuesCache(const KudDatasetVariable& variable) const;
    void _setSupportTags(const HbbTags& tags);
    bool _isRoleHidden(const HbdEVarRole& role) const;
    /// @}

private:
    virtual KudDatasetVariable _addVariable(HbdAVariable* variable) = 0;
    virtual KudDatasetVariable _createVariable(const HbdVariableDetails& details) = 0;
    virtual HbdAVariable* _readVariable(const KudDatasetVariable& variable) const = 0;
    virtual bool _renameVariable(const KudDatasetVariable& variable, const QString& name) = 0;
    virtual bool _deleteVariable(const KudDatasetVariable& variable) = 0;
    virtual bool _setDetails(const KudDatasetVariable& variable,
                             const HbdVariableDetails& details) = 0;
    virtual int _createSample(const SampleValues& values) = 0;
    virtual int _createSamples(const QList<SampleValues>& samples) = 0;
    virtual bool _deleteSamples(const HbiIntervalIntSmall& ranks) = 0;
    virtual bool _updateValues(int rank, const SampleValues& values) = 0;
    virtual KudDataTableHeader _rebuildHeader() const = 0;
    virtual void _cacheClear() const = 0;

    // Whole rows, columns and blocks at once. What a table does not offer better goes through the
    // operations above, or is refused.
    virtual int _createSampleRow(const SampleRow& row);
    virtual int _createSampleRows(const QList<SampleRow>& rows, const SampleValues& defaults);
    virtual int _appendSamples(const HbdDataTable& samples);
    virtual bool _deleteSampleSet(const HbiIntervalIntSmallDisjoint& ranks);
    virtual bool _updateColumn(const KudDatasetVariable& variable, int firstRank,
                               const HbdAVariable& values);
    virtual bool _updateColumn(const KudDatasetVariable& variable, int firstRank,
                               HbdSpan<const double> numbers);

    const KudDataTableHeader& header() const;
    bool mayCreateSamples(int count) const;

    struct Data;
    std::unique_ptr<Data> m_data;
};
