#pragma once

#include <geos/data/HgdADataSet.h>

class HbdANumericVariable;

/// Points: their coordinates are columns, borrowed as all columns are.
class KELVANE_GEOS_EXPORT HgdDataSetPoints final : public HgdADataSet
{
public:
    explicit HgdDataSetPoints(int sampleCount);
    ~HgdDataSetPoints() override;

    /// Null where there is no such coordinate. A column of another length is a programming error.
    void setCoordinates(const HbdANumericVariable* x, const HbdANumericVariable* y,
                        const HbdANumericVariable* z = nullptr);
    const HbdANumericVariable* getX() const { return m_x; }
    const HbdANumericVariable* getY() const { return m_y; }
    const HbdANumericVariable* getZ() const { return m_z; }

    std::unique_ptr<HgdADataSet> clone() const override;

private:
    const HbdANumericVariable* m_x = nullptr;
    const HbdANumericVariable* m_y = nullptr;
    const HbdANumericVariable* m_z = nullptr;
};
