#pragma once

#include <util/KuExport.h>
#include <util/calc/KucAExportDataEncoding.h>
#include <util/calc/KucExportBlock.h>
#include <util/utils/KuuCoordSystemConverter.h>

#include <geos/calc/HgcACalculatorSimple.h>

#include <QtCore/QMap>

#include <memory>

class HgdADataSet;
class HgdDataSetGrid;
class KucExportCoordinates;
class KucGridOrder;
struct HbdVariableDetails;

/// Exports the variables of a point or grid dataset as a table: a header line with their names,
/// then a row a sample, through an exchangeable encoding. Set it up, then run it as any job, in a
/// thread of its own or in the caller's; the setters are for the owner while it does not run.
///
///     KucExportData exportData;
///     exportData.setDataset(Kuc::createPoints(dataset, Kuc::getExportedVariables(dataset)));
///     exportData.setEncodingStrategy(new KucExportDataEncodingCsv(path, …));
///     if (!exportData.runInCurrentThread())
///         exportData.rethrowError();
///
/// Numbers are written in the unit, the format and the precision that their variables are shown
/// with, unless another unit is set for the export. Exporting only some of the samples is the
/// dataset's selection.
///
/// Between coordinate systems that do not describe the same transformation, the coordinates (the
/// variables of the roles X, Y and Z) are converted, in copies: the dataset stays as it is. X and Y
/// come out in the unit of the output system, elevations in the unit that they are shown in. A
/// coordinate that cannot be converted is written as undefined, and counted. What was done, how
/// exactly, and to how many points, is what getConversionReport tells after the run: show it.
///
/// An error or a cancel leaves the file as far as it was written. Without an encoding, with a
/// dataset that does not fit the sorting, or with a sorting that does not fit the grid, a run ends
/// with HbeProgrammingError; with no variable, with coordinates that cannot be converted as a whole
/// (see KuuCoordSystemConverter; a missing X or Y; a unit that does not fit the system), or with a
/// unit that does not fit its variable, with HbeUserError, before the file is opened.
class KELVANE_UTIL_EXPORT KucExportData : public HgcACalculatorSimple
{
    Q_OBJECT

public:
    /// The cell indices that a row of a grid export begins with.
    enum GridCellPosition {
        NoPosition = 0,  ///< none, as for any other value
        CellRank = 1,    ///< "IB": the rank of the cell in the grid, from 1
        CellIndices = 2, ///< "IX", "IY", in three dimensions "IZ": its indices, from 1
    };

    explicit KucExportData(QObject* parent = nullptr);
    ~KucExportData() override;

    /// Keeps a copy, which borrows the same columns: they stay alive and unedited during a run.
    void setDataset(const HgdADataSet& dataset);

    /// The system of the dataset's coordinates, and that of the file. With a geographic one,
    /// coordinates are headed and written as longitude and latitude. The unit of a coordinate
    /// variable counts, where it has one, else that of its system.
    void setCoordSystems(const KuuCoordSystem& input, const KuuCoordSystem& output);

    /// Another unit than the shown one for the variable of that full name, in this export alone. No
    /// digits are lost: see HbdVariableDetails::shownIn. A unit that is not valid takes it back.
    void setUnit(const QString& variable, const HbuUnit& unit);

    /// For a grid: coordinates of the nodes as columns "X", "Y" and, in three dimensions, "Z",
    /// before the variables, unless exported variables have these roles. A grid in another system
    /// is no regular grid any more, so that only they tell where its nodes are. Off by default.
    void setNodeCoordinates(bool write);

    /// Empty for points. For a grid its axes (0 is X, 1 is Y, 2 is Z) in the order of the loops,
    /// the outermost first: {2, 1, 0} walks along X, then Y, then Z.
    void setSorting(const QList<int>& axes);

    /// See GridCellPosition.
    void setGridCellPosition(int position);

    /// What is written for an undefined value, nothing by default. An undefined category is an
    /// empty cell all the same.
    void setUndefString(const QString& text);

    /// Writes every real as the shortest text that reads back the same, whatever its variable's
    /// format. Off by default.
    void setFullPrecision(bool full);

    /// Takes the encoding over; it is deleted with the export, or when another one is set.
    void setEncodingStrategy(KucAExportDataEncoding* encoding);

    /// \name Of the last run
    /// @{
    /// The conversion of the coordinates; null when there was none: the systems are of one
    /// transformation, or no coordinate is exported. It goes with the next run.
    const KuuCoordSystemConverter* getConverter() const;
    /// What became of the points; all 0 without a conversion.
    KuuCoordSystemConverter::Counts getConversionCounts() const;
    /// For people; empty without a conversion.
    QString getConversionReport() const;
    /// @}

protected:
    void _checkSetup() const override;
    int _countInputs(const HgcInputRule& rule) const override;
    /// Coordinates that cannot be converted, and units that do not fit, are errors, too.
    QString _checkInputs() const override;
    void _compute() override;

private:
    using Columns = KucExportBlock::Columns;

    bool isGridExport() const { return !m_sorting.isEmpty(); }
    bool isLonLat(const HbdAVariable& variable) const;
    void checkSorting(const HgdDataSetGrid& grid) const;
    void checkUnits(const KucExportCoordinates& coordinates) const;
    std::unique_ptr<KucExportCoordinates> createCoordinates() const;
    HbdVariableDetails describe(const HbdAVariable& variable,
                                const KucExportCoordinates& coordinates) const;
    KucExportColumn createColumn(const HbdAVariable& variable) const;
    std::vector<const HbdAVariable*> getColumnVariables() const;
    QStringList getIndexNames() const;
    void writeHeader();
    void exportSamples();
    void exportPoints(KucExportBlock& block);
    void exportGrid(KucExportBlock& block);
    void exportCells(KucExportBlock& block, const KucGridOrder& order, int first, int end);
    void writeBlock(KucExportBlock& block, const std::vector<int>& ranks,
                    const std::vector<int>& indices, int indexCount);

    std::unique_ptr<HgdADataSet> m_dataset;
    KuuCoordSystem m_inputSystem;
    KuuCoordSystem m_outputSystem;
    QMap<QString, HbuUnit> m_units; // by the full name of the variable
    bool m_nodeCoordinates = false;
    QList<int> m_sorting;
    int m_gridCellPosition = NoPosition;
    QString m_undefined;
    bool m_fullPrecision = false;
    std::unique_ptr<KucAExportDataEncoding> m_encoding;
    std::unique_ptr<KucExportCoordinates> m_coordinates; // of the run, and kept for its report
};
