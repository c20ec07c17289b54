#pragma once

#include <basic/data/HbdEnumCatalog.h>
#include <basic/data/HbdTypedVariable.h>
#include <basic/data/HbdValueTraits.h>

/// Categories: a code of the catalogue each, HbdEnumCatalog::UNDEFINED_CODE where there is none. A
/// code without a category is kept as it is.
class KELVANE_BASIC_EXPORT HbdVariableEnum final
    : public HbdTypedVariable<HbdVariableEnum, HbdAVariable, HbdValueTraits::Code>
{
public:
    explicit HbdVariableEnum(const HbdVariableDetails& details);
    HbdVariableEnum(const HbdVariableEnum&) = default;
    ~HbdVariableEnum() override;
    using HbdTypedVariable::append;

    /// Appends categories by label: what another catalogue knows is added to this one's.
    void append(const HbdAVariable& other) override;

    const HbdEnumCatalog& getCatalog() const { return m_catalog; }
    void setCatalog(const HbdEnumCatalog& catalog) { m_catalog = catalog; }

    /// The label of the cell's category, or a null text.
    QString getLabel(int rank) const { return m_catalog.getLabel(at(rank)); }

    /// The label; the code where it has no category; invalid where it is undefined.
    QVariant getVariant(int rank) const override;

    /// Holds labels of the catalogue and codes.
    void setVariant(int rank, const QVariant& value) override;

    void setVariants(int firstRank, const QVariant* const* values, int count) override;

    bool copyValues(int firstRank, const HbdAVariable& source, int sourceRank, int count) override;

    std::unique_ptr<HbdAVariable> createEmpty() const override;

protected:
    bool _hasEqualValues(const HbdAVariable& other) const override;

private:
    void adoptCodes(const HbdEnumCatalog& theirs, int first, int count);
    quint16 toCode(const QVariant& value) const;

    HbdEnumCatalog m_catalog;
};
