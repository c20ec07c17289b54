#pragma once

#include <util/calc/KucExportColumn.h>
#include <util/utils/KuuCoordSystemConverter.h>

#include <basic/data/HbdSpan.h>
#include <basic/data/HbdVariableReal.h>

#include <QtCore/QCoreApplication>

#include <array>
#include <memory>
#include <optional>
#include <vector>

class HbcAProgress;
class HbdANumericVariable;
class HgdADataSet;
class HgdDataSetGrid;

/// The coordinates that an export computes instead of reading them from a column: those in another
/// coordinate system, and those of grid nodes. They are made block by block in buffers that stay
/// where they are; the columns of the dataset are only read.
///
/// A position needs both x and y, whichever of them is exported; they come from the exported
/// columns of these roles, else from those that the dataset has for coordinates, else from the
/// grid's geometry. Elevations go through the conversion where there are any, and come out in the
/// unit that they are shown in: a horizontal coordinate system says nothing of it.
class KucExportCoordinates
{
    Q_DECLARE_TR_FUNCTIONS(KucExportCoordinates)

public:
    struct Setup {
        KuuCoordSystem input;
        KuuCoordSystem output;
        bool writesNodes = false; ///< of a grid, for the axes that no exported column has
        int blockSize = 0;        ///< rows at most
    };

    /// Borrows the dataset. HbeUserError where the coordinates cannot be converted: see
    /// KuuCoordSystemConverter; x or y is missing; a unit does not fit its system.
    KucExportCoordinates(const HgdADataSet& dataset, const Setup& setup);

    /// From an angle to degrees; invalid for any other unit.
    static HbuUnitTransfo getConversionToDegrees(const HbuUnit& unit);

    /// The variables of the grid's nodes, without values: they are exported before all others.
    std::vector<const HbdAVariable*> getNodeVariables() const;

    /// The values for an exported variable, row by row; null for one that is as it is.
    const double* findValues(const HbdAVariable& variable) const;

    /// How these values are shown: their unit is that of the output system, or for elevations the
    /// shown one; whole numbers, and those of a GENERAL format, are written to the millimetre.
    HbdVariableDetails describe(const HbdAVariable& variable) const;

    /// Makes the values for the samples of a block, as a part of the job.
    void load(HbdSpan<const int> ranks, HbcAProgress& progress);

    /// Null without a reprojection, which is also where no coordinate is exported.
    const KuuCoordSystemConverter* getConverter() const
    {
        return m_converts ? &*m_converter : nullptr;
    }
    /// Of the blocks so far.
    const KuuCoordSystemConverter::Counts& getCounts() const { return m_counts; }

private:
    enum Axis { X, Y, Z, AXIS_COUNT };
    struct Source {
        const HbdAVariable* exported = nullptr; // borrowed
        std::optional<KucExportColumn> column;  // in the unit of the conversion's first side
        std::unique_ptr<HbdVariableReal> node;  // the variable of the grid's nodes
        bool isNode = false;                    // without column: of the grid's geometry
        bool isUsed = false;
        std::vector<double> values; // of the rows
    };

    void findExported(const HgdADataSet& dataset);
    void addNodeVariables(const HgdADataSet& dataset);
    void convertExported(const HgdADataSet& dataset);
    void openSource(Axis axis, const HgdADataSet& dataset);
    HbuUnitTransfo getUnitConversion(Axis axis, const HbdAVariable& variable) const;
    int indexOf(const HbdAVariable& variable) const;
    void readNodes(HbdSpan<const int> ranks);

    Setup m_setup;
    const HgdDataSetGrid* m_grid; // borrowed; null for points
    std::array<Source, AXIS_COUNT> m_sources;
    std::optional<KuuCoordSystemConverter> m_converter;
    bool m_converts = false; // some exported coordinate is converted
    KuuCoordSystemConverter::Counts m_counts;
};
