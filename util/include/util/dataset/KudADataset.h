#pragma once

#include <util/KuExport.h>
#include <util/dataset/KudDatasetModif.h>
#include <util/dataset/KudDatasetVariableList.h>
#include <util/dataset/KudEDatasetType.h>
#include <util/dataset/KudFlags.h>
#include <util/observable/KuoAObservable.h>
#include <util/observable/KuoIObserver.h>
#include <util/utils/KuuAMementoOriginator.h>

#include <basic/data/HbdESupport.h>
#include <basic/data/HbdVarRoleFlags.h>
#include <basic/data/HbdVarTypeFlags.h>
#include <basic/geometry/HbgBox.h>
#include <basic/geometry/HbgEGeometrySet.h>
#include <basic/interval/HbiIntervalIntSmallO64Disjoint.h>

#include <QtCore/QBitArray>
#include <QtCore/QMap>
#include <QtGui/QIcon>

#include <memory>

class HbdAVariable;
class HbdANumericVariable;
class HbdEComponentRole;
class HbdEnumCatalog;
class HbdVariableEnum;
class HbdVariableText;
class HbuUnit;
class KudADataTable;
class KudDataTableModif;
class KudDatasetVariableFilter;
class KuuCoordSystem;
class KuuGeometrySample;
class KuuGeometrySet;
struct HbdVariableDetails;

/// A dataset: tables of samples with a geometry. It owns its tables and observes them, and tells
/// its own observers what changed in any of them. It saves its state into a memento, for undo and
/// for project files. Main thread only.
///
/// Operations on a variable go to the table that holds it; one that no table holds is refused.
class KELVANE_UTIL_EXPORT KudADataset : public KuoAObservable<KudDatasetModif>,
                                        public KuoIObserver<KudDataTableModif>,
                                        public KuuAMementoOriginator
{
public:
    /// What a tag says of the variables that carry it.
    enum VarFlag {
        HiddenVariable = 0x1,      ///< not offered to the user
        ReadOnlyVariable = 0x2,    ///< shown, but not to be edited
        NotExportedVariable = 0x4, ///< left out of exports unless it is named
    };
    Q_DECLARE_FLAGS(VarFlags, VarFlag)

    /// The relation under which datasets are stored in mementos: "Dataset".
    static QString getMementoRelation();

    KudADataset(const KudADataset&) = delete;
    KudADataset& operator=(const KudADataset&) = delete;

    virtual ~KudADataset();
    virtual QByteArray getType() const = 0; ///< the class's type tag
    virtual QString getName() const = 0;
    virtual QIcon getIcon() const = 0;
    virtual QString getSourcePath() const = 0;
    virtual bool isValid() const = 0;
    virtual QString getSourceId() const = 0;
    virtual KudEDatasetType getDatasetType() const = 0;

    virtual bool is2D() const = 0;
    virtual bool is3D() const = 0;
    virtual bool hasObject() const = 0;
    virtual int getObjectCount() const = 0;

    /// Of the defined coordinates; empty where there are none.
    virtual HbgBox getBoundingBox() const = 0;

    /// The new object's rank, or -1.
    virtual int createObject(const KuuGeometrySample& geometry) = 0;

    /// An empty sample for a rank outside of the objects.
    virtual KuuGeometrySample getObject(int rank) const = 0;
    virtual void updateObject(int rank, const KuuGeometrySample& geometry) = 0;
    virtual void deleteObject(int rank) = 0;
    virtual void deleteObjects(const HbiIntervalIntSmallDisjoint& ranks) = 0;
    virtual void deleteAllObjects() = 0;

    virtual KuuCoordSystem getCoordSystem() const = 0;
    virtual HbuUnit getCoordinateUnit() const = 0;
    virtual HbuUnit getElevationUnit() const = 0;
    virtual void setCoordSystem(const KuuCoordSystem& coordSystem) = 0;

    virtual HbgEGeometrySet getGeometry() const = 0;
    virtual KuuGeometrySet readGeometrySet() const = 0;

    virtual KudDatasetVariable getNameVariable() const = 0;
    virtual void setObjectName(int rank, const QString& name) = 0;

    virtual int getTableCount() const = 0;
    virtual KudADataTable* getTableAt(int i) const = 0; ///< null outside of the tables
    virtual KudADataTable* getObjectTable() const = 0;  ///< one sample an object, or null
    virtual HbdESupport getTableRole(const KudADataTable* table) const = 0;
    virtual KudADataTable* getTable(const QString& name) const = 0;
    virtual KudADataTable* getTable(const HbdESupport& support) const = 0;
    virtual QString getTableName(const KudADataTable* table) const = 0;

    /// Identifier and name of each object; the rank is the identifier where there is no variable
    /// for it.
    virtual QMap<qint64, QString> readObjectIdsAndNames() const = 0;
    virtual bool isMultiLayer() const;
    virtual KudADataset* getSubDataset(const QString& name);

private:
    virtual void _updateMemento(KuuMemento& memento) const = 0;

    /// Takes the state over, whole or (raising an error) not at all.
    virtual void _setFromMemento(const KuuMemento& memento) = 0;
    virtual QStringList _getTableList() const = 0;
    virtual void _clearGeometryCache() const;

public:
    virtual void clearAll() = 0; ///< drops all values and geometry

    /// The text of the uuid: the dataset's key.
    QString getId() const;

    /// \name Variables
    /// @{
    bool containsVariable(const KudDatasetVariable& variable) const;
    KudDatasetVariable createVariable(const HbdVariableDetails& details,
                                      const HbdESupport& support);
    bool deleteVariable(const KudDatasetVariable& variable); ///< needs CanDeleteVariables
    bool renameVariable(const KudDatasetVariable& variable, const QString& name);
    KudDatasetVariableList getVariables(const HbdVarTypeFlags& types,
                                        const HbdESupport& support) const;
    KudDatasetVariableList getVariables(const KudDatasetVariableFilter& filter) const;

    /// Those of that plain name on that support.
    KudDatasetVariableList getVariables(const QString& name, const HbdESupport& support) const;
    HbdVariableDetails getVariableDetails(const KudDatasetVariable& variable) const;
    bool setVariableDetails(const KudDatasetVariable& variable, const HbdVariableDetails& details);
    HbdEnumCatalog getVariableCatalog(const KudDatasetVariable& variable) const;
    bool isVariableValid(const KudDatasetVariable& variable,
                         const KudDatasetVariableFilter& filter) const;
    /// @}

    /// \name Values: borrowed columns, null where there is none of the kind asked for
    /// @{
    const HbdAVariable* readValues(const KudDatasetVariable& variable) const;
    const HbdANumericVariable* readNumericValues(const KudDatasetVariable& variable) const;
    const HbdVariableText* readStringValues(const KudDatasetVariable& variable) const;
    const HbdVariableEnum* readEnumValues(const KudDatasetVariable& variable) const;
    const HbdAVariable* readComponentValues(const KudDatasetVariable& variable,
                                            const HbdEComponentRole& role) const;

    /// The names that go with a colour variable: the name column of its table.
    const HbdVariableText* readNameValuesForColorVariable(const KudDatasetVariable& variable) const;
    /// @}

    /// \name The selections of the object table
    /// @{
    bool mask(const HbiIntervalIntSmallDisjoint& ranks, Ku::SelectionFlag flag);
    bool mask(int rank, Ku::SelectionFlag flag);
    bool unmaskAll();
    QBitArray getMask() const;
    QBitArray getHighlight() const;
    /// @}

    /// The rank of the object with that identifier (see readObjectIdsAndNames), or -1.
    int readObjectRankFromId(qint64 id) const;

    /// \name Settings
    /// @{
    Ku::DatasetFlags getFlags() const { return m_flags; }
    void setFlags(Ku::DatasetFlags flags) { m_flags = flags; } ///< the tables keep their own
    void setFlag(Ku::DatasetFlag flag, bool on = true) { m_flags.setFlag(flag, on); }
    bool testFlag(Ku::DatasetFlag flag) const { return m_flags.testFlag(flag); }

    bool isDatasetShared() const { return m_isShared; }
    void setDatasetShared(bool shared) { m_isShared = shared; }

    VarFlags getTagFlags(const QString& tag) const;
    void setTagFlags(const QString& tag, VarFlags flags);
    void setTagFlag(const QString& tag, VarFlag flag, bool on = true);
    bool testTagFlag(const QString& tag, VarFlag flag) const;
    QStringList getTags(VarFlags flags) const; ///< those that have all these flags

    /// The name that new objects start from.
    const QString& getDefaultObjectName() const { return m_defaultObjectName; }
    void setDefaultObjectName(const QString& name) { m_defaultObjectName = name; }

    /// The samples that users of the dataset restrict themselves to; null for all.
    void setInterval(const HbiIntervalIntSmallO64Disjoint& interval);
    void removeInterval();
    const HbiIntervalIntSmallO64Disjoint* getInterval() const { return m_interval.get(); }
    void hideStructuralRoles(const QMap<HbdESupport, HbdVarRoleFlags>& roles);
    /// @}

    void notifyReset() const;

    void update(const KudDataTableModif& notice) override;
    void destroyed(const KuoAObservable<KudDataTableModif>* table) override;

protected:
    explicit KudADataset(Ku::DatasetFlags flags);

    /// From creation to destruction; concrete datasets call it for each table they make.
    void _observeTable(const KudADataTable* table);

    int _getMementoVersion() const override;
    void _buildMemento(KuuMemento& memento) const override;
    void _setMemento(const KuuMemento& memento, bool adoptId) override;

private:
    KudADataTable* tableOf(const KudDatasetVariable& variable) const;
    struct Fields;

    Ku::DatasetFlags m_flags;
    bool m_isShared = false;
    QMap<QString, VarFlags> m_tagFlags;
    QString m_defaultObjectName;
    std::unique_ptr<HbiIntervalIntSmallO64Disjoint> m_interval;
    QMap<HbdESupport, HbdVarRoleFlags> m_hiddenRoles; // the tables hide them
    /// As observables: one that tells of its end is no table any more.
    QVector<const KuoAObservable<KudDataTableModif>*> m_observedTables;
};
Q_DECLARE_OPERATORS_FOR_FLAGS(KudADataset::VarFlags)
