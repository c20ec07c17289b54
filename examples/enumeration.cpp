// A rich enumeration: one table of rows gives the constants, the look-ups and the labels.
#include <basic/base/HbbAEnum.h>
#include <basic/error/HbeProgrammingError.h>

#include <cstdio>

#define SOIL_CLASS(ROW, Class)                                                                     \
    ROW(Class, SAND, 0, QT_TRANSLATE_NOOP("SoilClass", "Sand"))                                    \
    ROW(Class, SILT, 1, QT_TRANSLATE_NOOP("SoilClass", "Silt"))                                    \
    ROW(Class, CLAY, 7, QT_TRANSLATE_NOOP("SoilClass", "Clay"))

class SoilClass : public HbbAEnum
{
    HBB_ENUM(SoilClass, SOIL_CLASS)
};

HBB_ENUM_DEFINE(SoilClass, SOIL_CLASS, SAND, "examples/enumeration")

int main()
{
    for (const SoilClass soil : SoilClass::createIterator())
        std::printf("%d %s\n", soil.getValue(), qPrintable(soil.getLabel()));

    // With a fallback an unknown key is fine; without one it is the caller's mistake.
    const SoilClass known = SoilClass::fromKey("CLAY", SoilClass::SAND);
    const SoilClass unknown = SoilClass::fromKey("PEAT", SoilClass::SAND);
    std::printf("%s %s\n", qPrintable(known.getKey()), qPrintable(unknown.getKey()));
    try {
        SoilClass::fromKey("PEAT");
    } catch (const HbeProgrammingError& error) {
        std::printf("%s\n", error.what());
        return 0;
    }
    return 1;
}
