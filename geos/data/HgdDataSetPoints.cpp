#include <geos/data/HgdDataSetPoints.h>

#include <basic/data/HbdANumericVariable.h>

HgdDataSetPoints::HgdDataSetPoints(int sampleCount)
    : HgdADataSet(sampleCount)
{
}

HgdDataSetPoints::~HgdDataSetPoints() = default;

void HgdDataSetPoints::setCoordinates(const HbdANumericVariable* x, const HbdANumericVariable* y,
                                      const HbdANumericVariable* z)
{
    for (const HbdANumericVariable* coordinate : {x, y, z}) {
        if (coordinate != nullptr)
            checkLength(*coordinate);
    }
    m_x = x;
    m_y = y;
    m_z = z;
}

std::unique_ptr<HgdADataSet> HgdDataSetPoints::clone() const
{
    return std::make_unique<HgdDataSetPoints>(*this);
}
