#include "HbuUnitTable.h"

// Where the factors come from:
// - SI brochure (BIPM, 9th edition): SI units, prefixes and the units accepted beside them (minute,
//   hour, day, litre, tonne, hectare, degree); degree Celsius; 1 bar = 100 kPa.
// - International yard and pound agreement (1959): 1 yd = 0.9144 m, 1 lb = 0.45359237 kg, both
//   exact. From these, exactly: foot 0.3048 m, inch 0.0254 m, ounce lb / 16, grain lb / 7000, troy
//   ounce 480 gr = 0.0311034768 kg, short ton 2000 lb, long ton 2240 lb.
// - NIST Special Publication 811, appendix B: US survey foot 1200 / 3937 m; US gallon 231 in3; oil
//   barrel 42 gal; acre 43560 ft2; pound-force with g = 9.80665 m/s2; standard atmosphere 101325
//   Pa; torr = atm / 760; curie 3.7e10 Bq; degree Fahrenheit.
// - UK Weights and Measures Act 1985: gallon 4.54609 l.
// - SPE metric standard: 1 darcy = 1 cP (cm/s) / (atm/cm) = 1e-12 / 1.01325 m2 (9.869233e-13).
// - IAU: Julian year of 365.25 days; international nautical mile 1852 m.
// Ratios keep these exact: every integer below is exact as a double.

#define N(text) QT_TRANSLATE_NOOP("HbuUnit", text)

namespace
{

using C = HbuEUnitClass;
using S = HbuEUnitSystem;

constexpr double PI = 3.14159265358979323846;
constexpr double DAY = 86400.;
constexpr double YEAR = 365.25 * DAY;

constexpr double FOOT3 = 28316846592.;      // 1e-12 m3
constexpr double INCH3 = 16387064.;         // 1e-12 m3
constexpr double YARD3 = 764554857984.;     // 1e-12 m3
constexpr double GALLON_US = 3785411784.;   // 1e-12 m3
constexpr double POUND = 45359237.;         // 1e-8 kg
constexpr double SHORT_TON = 90718474.;     // 1e-5 kg
constexpr double TROY_OUNCE = 311034768.;   // 1e-10 kg
constexpr double SURVEY_AREA = 15499969.;   // 3937 squared
constexpr double FAHRENHEIT = 45967. / 180; // 459.67 * 5 / 9

const HbuUnitRow TABLE[] = {
    {C::E_LENGTH, S::E_METRIC, "m", "m", N("Metre"), 1, 1, 0},
    {C::E_LENGTH, S::E_METRIC, "km", "km", N("Kilometre"), 1000, 1, 0},
    {C::E_LENGTH, S::E_METRIC, "dm", "dm", N("Decimetre"), 1, 10, 0},
    {C::E_LENGTH, S::E_METRIC, "cm", "cm", N("Centimetre"), 1, 100, 0},
    {C::E_LENGTH, S::E_METRIC, "mm", "mm", N("Millimetre"), 1, 1000, 0},
    {C::E_LENGTH, S::E_METRIC, "um", "µm", N("Micrometre"), 1, 1e6, 0},
    {C::E_LENGTH, S::E_IMPERIAL, "ft", "ft", N("Foot"), 3048, 1e4, 0},
    {C::E_LENGTH, S::E_IMPERIAL, "in", "in", N("Inch"), 254, 1e4, 0},
    {C::E_LENGTH, S::E_IMPERIAL, "yd", "yd", N("Yard"), 9144, 1e4, 0},
    {C::E_LENGTH, S::E_IMPERIAL, "mi", "mi", N("Mile"), 1609344, 1000, 0},
    {C::E_LENGTH, S::E_OTHER, "nmi", "nmi", N("Nautical mile"), 1852, 1, 0},
    {C::E_LENGTH, S::E_US_SURVEY, "ft-us", "ftUS", N("US survey foot"), 1200, 3937, 0},
    {C::E_LENGTH, S::E_US_SURVEY, "yd-us", "ydUS", N("US survey yard"), 3600, 3937, 0},
    {C::E_LENGTH, S::E_US_SURVEY, "ch-us", "chUS", N("US survey chain"), 66 * 1200, 3937, 0},
    {C::E_LENGTH, S::E_US_SURVEY, "mi-us", "miUS", N("US survey mile"), 5280 * 1200, 3937, 0},

    {C::E_AREA, S::E_METRIC, "m2", "m²", N("Square metre"), 1, 1, 0},
    {C::E_AREA, S::E_METRIC, "km2", "km²", N("Square kilometre"), 1e6, 1, 0},
    {C::E_AREA, S::E_METRIC, "ha", "ha", N("Hectare"), 1e4, 1, 0},
    {C::E_AREA, S::E_METRIC, "a", "a", N("Are"), 100, 1, 0},
    {C::E_AREA, S::E_METRIC, "cm2", "cm²", N("Square centimetre"), 1, 1e4, 0},
    {C::E_AREA, S::E_METRIC, "mm2", "mm²", N("Square millimetre"), 1, 1e6, 0},
    {C::E_AREA, S::E_IMPERIAL, "ft2", "ft²", N("Square foot"), 9290304, 1e8, 0},
    {C::E_AREA, S::E_IMPERIAL, "in2", "in²", N("Square inch"), 64516, 1e8, 0},
    {C::E_AREA, S::E_IMPERIAL, "yd2", "yd²", N("Square yard"), 83612736, 1e8, 0},
    {C::E_AREA, S::E_IMPERIAL, "mi2", "mi²", N("Square mile"), 2589988110336., 1e6, 0},
    {C::E_AREA, S::E_IMPERIAL, "acre", "ac", N("Acre"), 40468564224., 1e7, 0},
    {C::E_AREA, S::E_US_SURVEY, "ft2-us", "ftUS²", N("US survey square foot"), 1440000, SURVEY_AREA,
     0},
    {C::E_AREA, S::E_US_SURVEY, "acre-us", "acUS", N("US survey acre"), 43560. * 1440000,
     SURVEY_AREA, 0},

    {C::E_VOLUME, S::E_METRIC, "m3", "m³", N("Cubic metre"), 1, 1, 0},
    {C::E_VOLUME, S::E_METRIC, "km3", "km³", N("Cubic kilometre"), 1e9, 1, 0},
    {C::E_VOLUME, S::E_METRIC, "cm3", "cm³", N("Cubic centimetre"), 1, 1e6, 0},
    {C::E_VOLUME, S::E_METRIC, "l", "l", N("Litre"), 1, 1000, 0},
    {C::E_VOLUME, S::E_METRIC, "ml", "ml", N("Millilitre"), 1, 1e6, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "ft3", "ft³", N("Cubic foot"), FOOT3, 1e12, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "in3", "in³", N("Cubic inch"), INCH3, 1e12, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "yd3", "yd³", N("Cubic yard"), YARD3, 1e12, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "gal-us", "galUS", N("US gallon"), GALLON_US, 1e12, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "gal-uk", "galUK", N("UK gallon"), 454609, 1e8, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "bbl", "bbl", N("Oil barrel"), 42 * GALLON_US, 1e12, 0},
    {C::E_VOLUME, S::E_IMPERIAL, "acre-ft", "ac·ft", N("Acre-foot"), 43560 * FOOT3, 1e12, 0},

    {C::E_MASS, S::E_METRIC, "kg", "kg", N("Kilogram"), 1, 1, 0},
    {C::E_MASS, S::E_METRIC, "g", "g", N("Gram"), 1, 1000, 0},
    {C::E_MASS, S::E_METRIC, "mg", "mg", N("Milligram"), 1, 1e6, 0},
    {C::E_MASS, S::E_METRIC, "ug", "µg", N("Microgram"), 1, 1e9, 0},
    {C::E_MASS, S::E_METRIC, "t", "t", N("Tonne"), 1000, 1, 0},
    {C::E_MASS, S::E_METRIC, "kt", "kt", N("Kilotonne"), 1e6, 1, 0},
    {C::E_MASS, S::E_METRIC, "Mt", "Mt", N("Megatonne"), 1e9, 1, 0},
    {C::E_MASS, S::E_METRIC, "ct", "ct", N("Metric carat"), 1, 5000, 0},
    {C::E_MASS, S::E_IMPERIAL, "lb", "lb", N("Pound"), POUND, 1e8, 0},
    {C::E_MASS, S::E_IMPERIAL, "oz", "oz", N("Ounce"), POUND, 16e8, 0},
    {C::E_MASS, S::E_IMPERIAL, "ozt", "ozt", N("Troy ounce"), TROY_OUNCE, 1e10, 0},
    {C::E_MASS, S::E_IMPERIAL, "gr", "gr", N("Grain"), 6479891, 1e11, 0},
    {C::E_MASS, S::E_IMPERIAL, "ton-us", "tonUS", N("Short ton"), SHORT_TON, 1e5, 0},
    {C::E_MASS, S::E_IMPERIAL, "ton-uk", "tonUK", N("Long ton"), 10160469088., 1e7, 0},

    {C::E_DENSITY, S::E_METRIC, "kg/m3", "kg/m³", N("Kilogram per cubic metre"), 1, 1, 0},
    {C::E_DENSITY, S::E_METRIC, "g/cm3", "g/cm³", N("Gram per cubic centimetre"), 1000, 1, 0},
    {C::E_DENSITY, S::E_METRIC, "t/m3", "t/m³", N("Tonne per cubic metre"), 1000, 1, 0},
    {C::E_DENSITY, S::E_METRIC, "kg/l", "kg/l", N("Kilogram per litre"), 1000, 1, 0},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/ft3", "lb/ft³", N("Pound per cubic foot"), POUND * 1e4, FOOT3,
     0},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/in3", "lb/in³", N("Pound per cubic inch"), POUND * 1e4, INCH3,
     0},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/gal-us", "lb/galUS", N("Pound per US gallon"), POUND * 1e4,
     GALLON_US, 0},
    {C::E_DENSITY, S::E_IMPERIAL, "ton-us/ft3", "tonUS/ft³", N("Short ton per cubic foot"),
     SHORT_TON * 1e7, FOOT3, 0},
    {C::E_DENSITY, S::E_IMPERIAL, "ton-us/yd3", "tonUS/yd³", N("Short ton per cubic yard"),
     SHORT_TON * 1e7, YARD3, 0},

    {C::E_CONCENTRATION, S::E_OTHER, "kg/kg", "kg/kg", N("Mass fraction"), 1, 1, 0},
    {C::E_CONCENTRATION, S::E_OTHER, "%", "%", N("Percent"), 1, 100, 0},
    {C::E_CONCENTRATION, S::E_OTHER, "ppm", "ppm", N("Part per million"), 1, 1e6, 0},
    {C::E_CONCENTRATION, S::E_OTHER, "ppb", "ppb", N("Part per billion"), 1, 1e9, 0},
    {C::E_CONCENTRATION, S::E_METRIC, "g/t", "g/t", N("Gram per tonne"), 1, 1e6, 0},
    {C::E_CONCENTRATION, S::E_METRIC, "kg/t", "kg/t", N("Kilogram per tonne"), 1, 1000, 0},
    {C::E_CONCENTRATION, S::E_METRIC, "g/kg", "g/kg", N("Gram per kilogram"), 1, 1000, 0},
    {C::E_CONCENTRATION, S::E_METRIC, "mg/kg", "mg/kg", N("Milligram per kilogram"), 1, 1e6, 0},
    {C::E_CONCENTRATION, S::E_METRIC, "ug/kg", "µg/kg", N("Microgram per kilogram"), 1, 1e9, 0},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "oz/t", "oz/t", N("Troy ounce per short ton"), TROY_OUNCE,
     SHORT_TON * 1e5, 0},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "lb/t", "lb/t", N("Pound per short ton"), 1, 2000, 0},

    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "kg/m3", "kg/m³", N("Kilogram per cubic metre"), 1, 1,
     0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "g/m3", "g/m³", N("Gram per cubic metre"), 1, 1000, 0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "mg/m3", "mg/m³", N("Milligram per cubic metre"), 1,
     1e6, 0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ug/m3", "µg/m³", N("Microgram per cubic metre"), 1,
     1e9, 0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "g/l", "g/l", N("Gram per litre"), 1, 1, 0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "mg/l", "mg/l", N("Milligram per litre"), 1, 1000, 0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ug/l", "µg/l", N("Microgram per litre"), 1, 1e6, 0},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ng/l", "ng/l", N("Nanogram per litre"), 1, 1e9, 0},

    {C::E_RATIO, S::E_OTHER, "fraction", "frac", N("Fraction"), 1, 1, 0},
    {C::E_RATIO, S::E_OTHER, "%", "%", N("Percent"), 1, 100, 0},
    {C::E_RATIO, S::E_OTHER, "permil", "‰", N("Per mille"), 1, 1000, 0},
    {C::E_RATIO, S::E_OTHER, "ppm", "ppm", N("Part per million"), 1, 1e6, 0},

    {C::E_PERMEABILITY, S::E_METRIC, "m2", "m²", N("Square metre"), 1, 1, 0},
    {C::E_PERMEABILITY, S::E_OTHER, "D", "D", N("Darcy"), 1, 101325e7, 0},
    {C::E_PERMEABILITY, S::E_OTHER, "mD", "mD", N("Millidarcy"), 1, 101325e10, 0},

    {C::E_PRESSURE, S::E_METRIC, "Pa", "Pa", N("Pascal"), 1, 1, 0},
    {C::E_PRESSURE, S::E_METRIC, "hPa", "hPa", N("Hectopascal"), 100, 1, 0},
    {C::E_PRESSURE, S::E_METRIC, "kPa", "kPa", N("Kilopascal"), 1000, 1, 0},
    {C::E_PRESSURE, S::E_METRIC, "MPa", "MPa", N("Megapascal"), 1e6, 1, 0},
    {C::E_PRESSURE, S::E_METRIC, "bar", "bar", N("Bar"), 1e5, 1, 0},
    {C::E_PRESSURE, S::E_METRIC, "mbar", "mbar", N("Millibar"), 100, 1, 0},
    {C::E_PRESSURE, S::E_OTHER, "atm", "atm", N("Standard atmosphere"), 101325, 1, 0},
    {C::E_PRESSURE, S::E_OTHER, "torr", "Torr", N("Torr"), 101325, 760, 0},
    {C::E_PRESSURE, S::E_OTHER, "kgf/cm2", "kgf/cm²", N("Kilogram-force per square centimetre"),
     980665, 10, 0},
    {C::E_PRESSURE, S::E_IMPERIAL, "psi", "psi", N("Pound-force per square inch"), POUND * 980665,
     64516e5, 0},

    {C::E_TEMPERATURE, S::E_METRIC, "K", "K", N("Kelvin"), 1, 1, 0},
    {C::E_TEMPERATURE, S::E_METRIC, "degC", "°C", N("Degree Celsius"), 1, 1, 273.15},
    {C::E_TEMPERATURE, S::E_IMPERIAL, "degF", "°F", N("Degree Fahrenheit"), 5, 9, FAHRENHEIT},
    {C::E_TEMPERATURE, S::E_IMPERIAL, "degR", "°R", N("Degree Rankine"), 5, 9, 0},

    {C::E_TIME, S::E_OTHER, "s", "s", N("Second"), 1, 1, 0},
    {C::E_TIME, S::E_OTHER, "ms", "ms", N("Millisecond"), 1, 1000, 0},
    {C::E_TIME, S::E_OTHER, "min", "min", N("Minute"), 60, 1, 0},
    {C::E_TIME, S::E_OTHER, "h", "h", N("Hour"), 3600, 1, 0},
    {C::E_TIME, S::E_OTHER, "d", "d", N("Day"), DAY, 1, 0},
    {C::E_TIME, S::E_OTHER, "wk", "wk", N("Week"), 7 * DAY, 1, 0},
    {C::E_TIME, S::E_OTHER, "yr", "yr", N("Year"), YEAR, 1, 0},
    {C::E_TIME, S::E_OTHER, "kyr", "kyr", N("Thousand years"), YEAR * 1e3, 1, 0},
    {C::E_TIME, S::E_OTHER, "Myr", "Myr", N("Million years"), YEAR * 1e6, 1, 0},

    {C::E_VELOCITY, S::E_METRIC, "m/s", "m/s", N("Metre per second"), 1, 1, 0},
    {C::E_VELOCITY, S::E_METRIC, "km/s", "km/s", N("Kilometre per second"), 1000, 1, 0},
    {C::E_VELOCITY, S::E_METRIC, "km/h", "km/h", N("Kilometre per hour"), 5, 18, 0},
    {C::E_VELOCITY, S::E_METRIC, "cm/s", "cm/s", N("Centimetre per second"), 1, 100, 0},
    {C::E_VELOCITY, S::E_METRIC, "m/h", "m/h", N("Metre per hour"), 1, 3600, 0},
    {C::E_VELOCITY, S::E_METRIC, "m/d", "m/d", N("Metre per day"), 1, DAY, 0},
    {C::E_VELOCITY, S::E_METRIC, "m/yr", "m/yr", N("Metre per year"), 1, YEAR, 0},
    {C::E_VELOCITY, S::E_METRIC, "mm/yr", "mm/yr", N("Millimetre per year"), 1, YEAR * 1000, 0},
    {C::E_VELOCITY, S::E_IMPERIAL, "ft/s", "ft/s", N("Foot per second"), 3048, 1e4, 0},
    {C::E_VELOCITY, S::E_IMPERIAL, "ft/d", "ft/d", N("Foot per day"), 3048, DAY * 1e4, 0},
    {C::E_VELOCITY, S::E_IMPERIAL, "mph", "mph", N("Mile per hour"), 44704, 1e5, 0},
    {C::E_VELOCITY, S::E_OTHER, "kn", "kn", N("Knot"), 463, 900, 0},

    {C::E_ANGLE, S::E_OTHER, "rad", "rad", N("Radian"), 1, 1, 0},
    {C::E_ANGLE, S::E_OTHER, "mrad", "mrad", N("Milliradian"), 1, 1000, 0},
    {C::E_ANGLE, S::E_OTHER, "deg", "°", N("Degree"), PI, 180, 0},
    {C::E_ANGLE, S::E_OTHER, "arcmin", "′", N("Minute of arc"), PI, 10800, 0},
    {C::E_ANGLE, S::E_OTHER, "arcsec", "″", N("Second of arc"), PI, 648000, 0},
    {C::E_ANGLE, S::E_OTHER, "gon", "gon", N("Gon"), PI, 200, 0},

    {C::E_LONGITUDE, S::E_OTHER, "deg", "°", N("Degree"), 1, 1, 0},
    {C::E_LONGITUDE, S::E_OTHER, "rad", "rad", N("Radian"), 180, PI, 0},
    {C::E_LONGITUDE, S::E_OTHER, "gon", "gon", N("Gon"), 9, 10, 0},

    {C::E_LATITUDE, S::E_OTHER, "deg", "°", N("Degree"), 1, 1, 0},
    {C::E_LATITUDE, S::E_OTHER, "rad", "rad", N("Radian"), 180, PI, 0},
    {C::E_LATITUDE, S::E_OTHER, "gon", "gon", N("Gon"), 9, 10, 0},

    {C::E_ACTIVITY, S::E_METRIC, "Bq", "Bq", N("Becquerel"), 1, 1, 0},
    {C::E_ACTIVITY, S::E_METRIC, "kBq", "kBq", N("Kilobecquerel"), 1e3, 1, 0},
    {C::E_ACTIVITY, S::E_METRIC, "MBq", "MBq", N("Megabecquerel"), 1e6, 1, 0},
    {C::E_ACTIVITY, S::E_METRIC, "GBq", "GBq", N("Gigabecquerel"), 1e9, 1, 0},
    {C::E_ACTIVITY, S::E_METRIC, "TBq", "TBq", N("Terabecquerel"), 1e12, 1, 0},
    {C::E_ACTIVITY, S::E_OTHER, "Ci", "Ci", N("Curie"), 37e9, 1, 0},
    {C::E_ACTIVITY, S::E_OTHER, "uCi", "µCi", N("Microcurie"), 37e3, 1, 0},
    {C::E_ACTIVITY, S::E_OTHER, "pCi", "pCi", N("Picocurie"), 37, 1000, 0},

    {C::E_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/kg", "Bq/kg", N("Becquerel per kilogram"), 1, 1,
     0},
    {C::E_ACTIVITY_CONCENTRATION, S::E_METRIC, "kBq/kg", "kBq/kg", N("Kilobecquerel per kilogram"),
     1000, 1, 0},
    {C::E_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/g", "Bq/g", N("Becquerel per gram"), 1000, 1, 0},
    {C::E_ACTIVITY_CONCENTRATION, S::E_OTHER, "pCi/g", "pCi/g", N("Picocurie per gram"), 37, 1, 0},

    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/m3", "Bq/m³",
     N("Becquerel per cubic metre"), 1, 1, 0},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "kBq/m3", "kBq/m³",
     N("Kilobecquerel per cubic metre"), 1000, 1, 0},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/l", "Bq/l", N("Becquerel per litre"),
     1000, 1, 0},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_OTHER, "pCi/l", "pCi/l", N("Picocurie per litre"), 37,
     1, 0},
};

} // namespace

const HbuUnitRow HbuUnitTable::NONE = {C::E_NONE, S::E_OTHER, "NONE", "", N("No unit"), 1, 1, 0};

const HbuUnitRow* HbuUnitTable::begin()
{
    return std::begin(TABLE);
}

const HbuUnitRow* HbuUnitTable::end()
{
    return std::end(TABLE);
}
