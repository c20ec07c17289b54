#include "HbuUnitTable.h"

// Ratios keep the definitions exact: every integer below is exact as a double. Darcy is
// 1 cP (cm/s) / (atm/cm) = 1e-12 / 1.01325 m2, published as 9.869233e-13 m2.

#define N(text) QT_TRANSLATE_NOOP("HbuUnit", text)

namespace
{

using C = HbuEUnitClass;
using S = HbuEUnitSystem;

// Who publishes the factors. A product or a quotient of units names the source of the part that
// does not come from the SI.

/// Units of the SI and its prefixes; minute, hour, day, litre, tonne, hectare, degree, bar.
constexpr char SI[] = "BIPM, The International System of Units, 9th edition, 2019";
/// 1 yd = 0.9144 m, 1 lb = 0.45359237 kg, exactly; from these the foot 0.3048 m, inch 0.0254 m,
/// ounce lb / 16, grain lb / 7000, pennyweight 24 gr, troy ounce 480 gr = 0.0311034768 kg, short
/// ton 2000 lb, long ton 2240 lb.
constexpr char YARD_POUND[] = "International yard and pound agreement, 1959";
/// Survey foot 1200 / 3937 m, US gallon 231 in3, oil barrel 42 gal, acre 43560 ft2, carat 0.2 g,
/// pound-force with 9.80665 m/s2, atmosphere 101325 Pa, torr atm / 760, curie 3.7e10 Bq, degree
/// Fahrenheit, nautical mile 1852 m, gon.
constexpr char SP811[] = "NIST Special Publication 811, appendix B, 2008";
/// Gallon 4.54609 l.
constexpr char WEIGHTS_ACT[] = "UK Weights and Measures Act 1985, schedule 1";
/// Darcy; the porosity unit.
constexpr char SPE[] = "SPE, The SI Metric System of Units and SPE Metric Standard, 1984";
/// Julian year of 365.25 days.
constexpr char IAU[] = "IAU Style Manual, 1989";

constexpr double PI = 3.14159265358979323846;
constexpr double DAY = 86400.;
constexpr double YEAR = 365.25 * DAY;

constexpr double FOOT3 = 28316846592.;    // 1e-12 m3
constexpr double INCH3 = 16387064.;       // 1e-12 m3
constexpr double YARD3 = 764554857984.;   // 1e-12 m3
constexpr double GALLON_US = 3785411784.; // 1e-12 m3
constexpr double POUND = 45359237.;       // 1e-8 kg
constexpr double SHORT_TON = 90718474.;   // 1e-5 kg
constexpr double TROY_OUNCE = 311034768.; // 1e-10 kg
constexpr double SURVEY_AREA = 15499969.; // 3937 squared

const HbuUnitRow TABLE[] = {
    {C::E_LENGTH, S::E_METRIC, "m", "m", N("Metre"), SI, 1, 1},
    {C::E_LENGTH, S::E_METRIC, "km", "km", N("Kilometre"), SI, 1000, 1},
    {C::E_LENGTH, S::E_METRIC, "dm", "dm", N("Decimetre"), SI, 1, 10},
    {C::E_LENGTH, S::E_METRIC, "cm", "cm", N("Centimetre"), SI, 1, 100},
    {C::E_LENGTH, S::E_METRIC, "mm", "mm", N("Millimetre"), SI, 1, 1000},
    {C::E_LENGTH, S::E_METRIC, "um", "µm", N("Micrometre"), SI, 1, 1e6},
    {C::E_LENGTH, S::E_METRIC, "nm", "nm", N("Nanometre"), SI, 1, 1e9},
    {C::E_LENGTH, S::E_IMPERIAL, "ft", "ft", N("Foot"), YARD_POUND, 3048, 1e4},
    {C::E_LENGTH, S::E_IMPERIAL, "in", "in", N("Inch"), YARD_POUND, 254, 1e4},
    {C::E_LENGTH, S::E_IMPERIAL, "yd", "yd", N("Yard"), YARD_POUND, 9144, 1e4},
    {C::E_LENGTH, S::E_IMPERIAL, "mi", "mi", N("Mile"), YARD_POUND, 1609344, 1000},
    {C::E_LENGTH, S::E_OTHER, "nmi", "nmi", N("Nautical mile"), SP811, 1852, 1},
    {C::E_LENGTH, S::E_US_SURVEY, "ft-us", "ftUS", N("US survey foot"), SP811, 1200, 3937},
    {C::E_LENGTH, S::E_US_SURVEY, "yd-us", "ydUS", N("US survey yard"), SP811, 3600, 3937},
    {C::E_LENGTH, S::E_US_SURVEY, "lk-us", "lkUS", N("US survey link"), SP811, 792, 3937},
    {C::E_LENGTH, S::E_US_SURVEY, "ch-us", "chUS", N("US survey chain"), SP811, 66 * 1200, 3937},
    {C::E_LENGTH, S::E_US_SURVEY, "mi-us", "miUS", N("US survey mile"), SP811, 5280 * 1200, 3937},

    {C::E_AREA, S::E_METRIC, "m2", "m²", N("Square metre"), SI, 1, 1},
    {C::E_AREA, S::E_METRIC, "km2", "km²", N("Square kilometre"), SI, 1e6, 1},
    {C::E_AREA, S::E_METRIC, "ha", "ha", N("Hectare"), SI, 1e4, 1},
    {C::E_AREA, S::E_METRIC, "a", "a", N("Are"), SI, 100, 1},
    {C::E_AREA, S::E_METRIC, "cm2", "cm²", N("Square centimetre"), SI, 1, 1e4},
    {C::E_AREA, S::E_METRIC, "mm2", "mm²", N("Square millimetre"), SI, 1, 1e6},
    {C::E_AREA, S::E_IMPERIAL, "ft2", "ft²", N("Square foot"), YARD_POUND, 9290304, 1e8},
    {C::E_AREA, S::E_IMPERIAL, "in2", "in²", N("Square inch"), YARD_POUND, 64516, 1e8},
    {C::E_AREA, S::E_IMPERIAL, "yd2", "yd²", N("Square yard"), YARD_POUND, 83612736, 1e8},
    {C::E_AREA, S::E_IMPERIAL, "mi2", "mi²", N("Square mile"), YARD_POUND, 2589988110336., 1e6},
    {C::E_AREA, S::E_IMPERIAL, "acre", "ac", N("Acre"), SP811, 40468564224., 1e7},
    {C::E_AREA, S::E_US_SURVEY, "ft2-us", "ftUS²", N("US survey square foot"), SP811, 1440000,
     SURVEY_AREA},
    {C::E_AREA, S::E_US_SURVEY, "acre-us", "acUS", N("US survey acre"), SP811, 43560. * 1440000,
     SURVEY_AREA},
    {C::E_AREA, S::E_US_SURVEY, "mi2-us", "miUS²", N("US survey square mile"), SP811,
     27878400. * 1440000, SURVEY_AREA},

    {C::E_VOLUME, S::E_METRIC, "m3", "m³", N("Cubic metre"), SI, 1, 1},
    {C::E_VOLUME, S::E_METRIC, "km3", "km³", N("Cubic kilometre"), SI, 1e9, 1},
    {C::E_VOLUME, S::E_METRIC, "hm3", "hm³", N("Cubic hectometre"), SI, 1e6, 1},
    {C::E_VOLUME, S::E_METRIC, "dm3", "dm³", N("Cubic decimetre"), SI, 1, 1000},
    {C::E_VOLUME, S::E_METRIC, "cm3", "cm³", N("Cubic centimetre"), SI, 1, 1e6},
    {C::E_VOLUME, S::E_METRIC, "mm3", "mm³", N("Cubic millimetre"), SI, 1, 1e9},
    {C::E_VOLUME, S::E_METRIC, "l", "l", N("Litre"), SI, 1, 1000},
    {C::E_VOLUME, S::E_METRIC, "ml", "ml", N("Millilitre"), SI, 1, 1e6},
    {C::E_VOLUME, S::E_IMPERIAL, "ft3", "ft³", N("Cubic foot"), YARD_POUND, FOOT3, 1e12},
    {C::E_VOLUME, S::E_IMPERIAL, "in3", "in³", N("Cubic inch"), YARD_POUND, INCH3, 1e12},
    {C::E_VOLUME, S::E_IMPERIAL, "yd3", "yd³", N("Cubic yard"), YARD_POUND, YARD3, 1e12},
    {C::E_VOLUME, S::E_IMPERIAL, "gal-us", "galUS", N("US gallon"), SP811, GALLON_US, 1e12},
    {C::E_VOLUME, S::E_IMPERIAL, "gal-uk", "galUK", N("UK gallon"), WEIGHTS_ACT, 454609, 1e8},
    {C::E_VOLUME, S::E_IMPERIAL, "bbl", "bbl", N("Oil barrel"), SP811, 42 * GALLON_US, 1e12},
    {C::E_VOLUME, S::E_IMPERIAL, "Mbbl", "Mbbl", N("Thousand oil barrels"), SP811, 42 * GALLON_US,
     1e9},
    {C::E_VOLUME, S::E_IMPERIAL, "MMbbl", "MMbbl", N("Million oil barrels"), SP811, 42 * GALLON_US,
     1e6},
    {C::E_VOLUME, S::E_IMPERIAL, "acre-ft", "ac·ft", N("Acre-foot"), SP811, 43560 * FOOT3, 1e12},

    {C::E_MASS, S::E_METRIC, "kg", "kg", N("Kilogram"), SI, 1, 1},
    {C::E_MASS, S::E_METRIC, "g", "g", N("Gram"), SI, 1, 1000},
    {C::E_MASS, S::E_METRIC, "mg", "mg", N("Milligram"), SI, 1, 1e6},
    {C::E_MASS, S::E_METRIC, "ug", "µg", N("Microgram"), SI, 1, 1e9},
    {C::E_MASS, S::E_METRIC, "t", "t", N("Tonne"), SI, 1000, 1},
    {C::E_MASS, S::E_METRIC, "kt", "kt", N("Kilotonne"), SI, 1e6, 1},
    {C::E_MASS, S::E_METRIC, "Mt", "Mt", N("Megatonne"), SI, 1e9, 1},
    {C::E_MASS, S::E_METRIC, "Gt", "Gt", N("Gigatonne"), SI, 1e12, 1},
    {C::E_MASS, S::E_METRIC, "ct", "ct", N("Metric carat"), SP811, 1, 5000},
    {C::E_MASS, S::E_IMPERIAL, "lb", "lb", N("Pound"), YARD_POUND, POUND, 1e8},
    {C::E_MASS, S::E_IMPERIAL, "klb", "klb", N("Thousand pounds"), YARD_POUND, POUND, 1e5},
    {C::E_MASS, S::E_IMPERIAL, "Mlb", "Mlb", N("Million pounds"), YARD_POUND, POUND, 100},
    {C::E_MASS, S::E_IMPERIAL, "oz", "oz", N("Ounce"), YARD_POUND, POUND, 16e8},
    {C::E_MASS, S::E_IMPERIAL, "ozt", "ozt", N("Troy ounce"), YARD_POUND, TROY_OUNCE, 1e10},
    {C::E_MASS, S::E_IMPERIAL, "koz", "koz", N("Thousand troy ounces"), YARD_POUND, TROY_OUNCE,
     1e7},
    {C::E_MASS, S::E_IMPERIAL, "Moz", "Moz", N("Million troy ounces"), YARD_POUND, TROY_OUNCE, 1e4},
    {C::E_MASS, S::E_IMPERIAL, "dwt", "dwt", N("Pennyweight"), YARD_POUND, TROY_OUNCE, 20e10},
    {C::E_MASS, S::E_IMPERIAL, "gr", "gr", N("Grain"), YARD_POUND, 6479891, 1e11},
    {C::E_MASS, S::E_IMPERIAL, "ton-us", "tonUS", N("Short ton"), YARD_POUND, SHORT_TON, 1e5},
    {C::E_MASS, S::E_IMPERIAL, "ton-uk", "tonUK", N("Long ton"), YARD_POUND, 10160469088., 1e7},

    {C::E_DENSITY, S::E_METRIC, "kg/m3", "kg/m³", N("Kilogram per cubic metre"), SI, 1, 1},
    {C::E_DENSITY, S::E_METRIC, "g/cm3", "g/cm³", N("Gram per cubic centimetre"), SI, 1000, 1},
    {C::E_DENSITY, S::E_METRIC, "t/m3", "t/m³", N("Tonne per cubic metre"), SI, 1000, 1},
    {C::E_DENSITY, S::E_METRIC, "kg/l", "kg/l", N("Kilogram per litre"), SI, 1000, 1},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/ft3", "lb/ft³", N("Pound per cubic foot"), YARD_POUND,
     POUND * 1e4, FOOT3},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/in3", "lb/in³", N("Pound per cubic inch"), YARD_POUND,
     POUND * 1e4, INCH3},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/yd3", "lb/yd³", N("Pound per cubic yard"), YARD_POUND,
     POUND * 1e4, YARD3},
    {C::E_DENSITY, S::E_IMPERIAL, "lb/gal-us", "lb/galUS", N("Pound per US gallon"), SP811,
     POUND * 1e4, GALLON_US},
    {C::E_DENSITY, S::E_IMPERIAL, "ton-us/ft3", "tonUS/ft³", N("Short ton per cubic foot"),
     YARD_POUND, SHORT_TON * 1e7, FOOT3},
    {C::E_DENSITY, S::E_IMPERIAL, "ton-us/yd3", "tonUS/yd³", N("Short ton per cubic yard"),
     YARD_POUND, SHORT_TON * 1e7, YARD3},

    {C::E_CONCENTRATION, S::E_OTHER, "kg/kg", "kg/kg", N("Mass fraction"), SI, 1, 1},
    {C::E_CONCENTRATION, S::E_OTHER, "%", "%", N("Percent"), SI, 1, 100},
    {C::E_CONCENTRATION, S::E_OTHER, "permil", "‰", N("Per mille"), SI, 1, 1000},
    {C::E_CONCENTRATION, S::E_OTHER, "ppm", "ppm", N("Part per million"), SI, 1, 1e6},
    {C::E_CONCENTRATION, S::E_OTHER, "ppb", "ppb", N("Part per billion"), SI, 1, 1e9},
    {C::E_CONCENTRATION, S::E_OTHER, "ppt", "ppt", N("Part per trillion"), SI, 1, 1e12},
    {C::E_CONCENTRATION, S::E_METRIC, "g/t", "g/t", N("Gram per tonne"), SI, 1, 1e6},
    {C::E_CONCENTRATION, S::E_METRIC, "kg/t", "kg/t", N("Kilogram per tonne"), SI, 1, 1000},
    {C::E_CONCENTRATION, S::E_METRIC, "mg/t", "mg/t", N("Milligram per tonne"), SI, 1, 1e9},
    {C::E_CONCENTRATION, S::E_METRIC, "g/kg", "g/kg", N("Gram per kilogram"), SI, 1, 1000},
    {C::E_CONCENTRATION, S::E_METRIC, "mg/kg", "mg/kg", N("Milligram per kilogram"), SI, 1, 1e6},
    {C::E_CONCENTRATION, S::E_METRIC, "ug/kg", "µg/kg", N("Microgram per kilogram"), SI, 1, 1e9},
    {C::E_CONCENTRATION, S::E_METRIC, "ct/t", "ct/t", N("Carat per tonne"), SP811, 1, 5e6},
    {C::E_CONCENTRATION, S::E_METRIC, "cpht", "cpht", N("Carat per hundred tonnes"), SP811, 1, 5e8},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "oz/t", "oz/t", N("Troy ounce per short ton"), YARD_POUND,
     3, 87500},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "oz/ton-uk", "oz/tonUK", N("Troy ounce per long ton"),
     YARD_POUND, 3, 98000},
    {C::E_CONCENTRATION, S::E_OTHER, "ozt/t", "ozt/t", N("Troy ounce per tonne"), YARD_POUND,
     TROY_OUNCE, 1e13},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "dwt/ton-us", "dwt/tonUS", N("Pennyweight per short ton"),
     YARD_POUND, 3, 1750000},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "lb/t", "lb/t", N("Pound per short ton"), YARD_POUND, 1,
     2000},
    {C::E_CONCENTRATION, S::E_IMPERIAL, "lb/ton-uk", "lb/tonUK", N("Pound per long ton"),
     YARD_POUND, 1, 2240},

    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "kg/m3", "kg/m³", N("Kilogram per cubic metre"), SI, 1,
     1},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "g/m3", "g/m³", N("Gram per cubic metre"), SI, 1,
     1000},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "mg/m3", "mg/m³", N("Milligram per cubic metre"), SI,
     1, 1e6},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ug/m3", "µg/m³", N("Microgram per cubic metre"), SI,
     1, 1e9},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "g/l", "g/l", N("Gram per litre"), SI, 1, 1},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "mg/l", "mg/l", N("Milligram per litre"), SI, 1, 1000},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ug/l", "µg/l", N("Microgram per litre"), SI, 1, 1e6},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ng/l", "ng/l", N("Nanogram per litre"), SI, 1, 1e9},
    {C::E_VOLUME_CONCENTRATION, S::E_METRIC, "ct/m3", "ct/m³", N("Carat per cubic metre"), SP811, 1,
     5000},
    {C::E_VOLUME_CONCENTRATION, S::E_IMPERIAL, "lb/yd3", "lb/yd³", N("Pound per cubic yard"),
     YARD_POUND, POUND * 1e4, YARD3},
    {C::E_VOLUME_CONCENTRATION, S::E_IMPERIAL, "ozt/yd3", "ozt/yd³", N("Troy ounce per cubic yard"),
     YARD_POUND, TROY_OUNCE * 100, YARD3},

    {C::E_RATIO, S::E_OTHER, "fraction", "frac", N("Fraction"), SI, 1, 1},
    {C::E_RATIO, S::E_OTHER, "%", "%", N("Percent"), SI, 1, 100},
    {C::E_RATIO, S::E_OTHER, "pu", "p.u.", N("Porosity unit"), SPE, 1, 100},
    {C::E_RATIO, S::E_OTHER, "permil", "‰", N("Per mille"), SI, 1, 1000},
    {C::E_RATIO, S::E_OTHER, "ppm", "ppm", N("Part per million"), SI, 1, 1e6},
    {C::E_RATIO, S::E_OTHER, "ppb", "ppb", N("Part per billion"), SI, 1, 1e9},

    {C::E_PERMEABILITY, S::E_METRIC, "m2", "m²", N("Square metre"), SI, 1, 1},
    {C::E_PERMEABILITY, S::E_METRIC, "cm2", "cm²", N("Square centimetre"), SI, 1, 1e4},
    {C::E_PERMEABILITY, S::E_METRIC, "um2", "µm²", N("Square micrometre"), SI, 1, 1e12},
    {C::E_PERMEABILITY, S::E_OTHER, "D", "D", N("Darcy"), SPE, 1, 101325e7},
    {C::E_PERMEABILITY, S::E_OTHER, "mD", "mD", N("Millidarcy"), SPE, 1, 101325e10},
    {C::E_PERMEABILITY, S::E_OTHER, "uD", "µD", N("Microdarcy"), SPE, 1, 101325e13},

    {C::E_PRESSURE, S::E_METRIC, "Pa", "Pa", N("Pascal"), SI, 1, 1},
    {C::E_PRESSURE, S::E_METRIC, "hPa", "hPa", N("Hectopascal"), SI, 100, 1},
    {C::E_PRESSURE, S::E_METRIC, "kPa", "kPa", N("Kilopascal"), SI, 1000, 1},
    {C::E_PRESSURE, S::E_METRIC, "MPa", "MPa", N("Megapascal"), SI, 1e6, 1},
    {C::E_PRESSURE, S::E_METRIC, "GPa", "GPa", N("Gigapascal"), SI, 1e9, 1},
    {C::E_PRESSURE, S::E_METRIC, "bar", "bar", N("Bar"), SI, 1e5, 1},
    {C::E_PRESSURE, S::E_METRIC, "dbar", "dbar", N("Decibar"), SI, 1e4, 1},
    {C::E_PRESSURE, S::E_METRIC, "mbar", "mbar", N("Millibar"), SI, 100, 1},
    {C::E_PRESSURE, S::E_OTHER, "atm", "atm", N("Standard atmosphere"), SP811, 101325, 1},
    {C::E_PRESSURE, S::E_OTHER, "torr", "Torr", N("Torr"), SP811, 101325, 760},
    {C::E_PRESSURE, S::E_OTHER, "kgf/cm2", "kgf/cm²", N("Kilogram-force per square centimetre"),
     SP811, 980665, 10},
    {C::E_PRESSURE, S::E_IMPERIAL, "psi", "psi", N("Pound-force per square inch"), SP811,
     POUND * 980665, 64516e5},
    {C::E_PRESSURE, S::E_IMPERIAL, "ksi", "ksi", N("Thousand pounds-force per square inch"), SP811,
     POUND * 980665, 64516e2},

    {C::E_TEMPERATURE, S::E_METRIC, "K", "K", N("Kelvin"), SI, 1, 1},
    {C::E_TEMPERATURE, S::E_METRIC, "degC", "°C", N("Degree Celsius"), SI, 20, 20, 5463},
    {C::E_TEMPERATURE, S::E_IMPERIAL, "degF", "°F", N("Degree Fahrenheit"), SP811, 100, 180, 45967},
    {C::E_TEMPERATURE, S::E_IMPERIAL, "degR", "°R", N("Degree Rankine"), SP811, 5, 9},

    {C::E_TIME, S::E_OTHER, "s", "s", N("Second"), SI, 1, 1},
    {C::E_TIME, S::E_OTHER, "ms", "ms", N("Millisecond"), SI, 1, 1000},
    {C::E_TIME, S::E_OTHER, "us", "µs", N("Microsecond"), SI, 1, 1e6},
    {C::E_TIME, S::E_OTHER, "min", "min", N("Minute"), SI, 60, 1},
    {C::E_TIME, S::E_OTHER, "h", "h", N("Hour"), SI, 3600, 1},
    {C::E_TIME, S::E_OTHER, "d", "d", N("Day"), SI, DAY, 1},
    {C::E_TIME, S::E_OTHER, "wk", "wk", N("Week"), SI, 7 * DAY, 1},
    {C::E_TIME, S::E_OTHER, "yr", "yr", N("Year"), IAU, YEAR, 1},
    {C::E_TIME, S::E_OTHER, "kyr", "kyr", N("Thousand years"), IAU, YEAR * 1e3, 1},
    {C::E_TIME, S::E_OTHER, "Myr", "Myr", N("Million years"), IAU, YEAR * 1e6, 1},
    {C::E_TIME, S::E_OTHER, "Gyr", "Gyr", N("Billion years"), IAU, YEAR * 1e9, 1},

    {C::E_VELOCITY, S::E_METRIC, "m/s", "m/s", N("Metre per second"), SI, 1, 1},
    {C::E_VELOCITY, S::E_METRIC, "km/s", "km/s", N("Kilometre per second"), SI, 1000, 1},
    {C::E_VELOCITY, S::E_METRIC, "km/h", "km/h", N("Kilometre per hour"), SI, 5, 18},
    {C::E_VELOCITY, S::E_METRIC, "cm/s", "cm/s", N("Centimetre per second"), SI, 1, 100},
    {C::E_VELOCITY, S::E_METRIC, "m/h", "m/h", N("Metre per hour"), SI, 1, 3600},
    {C::E_VELOCITY, S::E_METRIC, "m/d", "m/d", N("Metre per day"), SI, 1, DAY},
    {C::E_VELOCITY, S::E_METRIC, "cm/d", "cm/d", N("Centimetre per day"), SI, 1, DAY * 100},
    {C::E_VELOCITY, S::E_METRIC, "mm/d", "mm/d", N("Millimetre per day"), SI, 1, DAY * 1000},
    {C::E_VELOCITY, S::E_METRIC, "m/yr", "m/yr", N("Metre per year"), IAU, 1, YEAR},
    {C::E_VELOCITY, S::E_METRIC, "cm/yr", "cm/yr", N("Centimetre per year"), IAU, 1, YEAR * 100},
    {C::E_VELOCITY, S::E_METRIC, "mm/yr", "mm/yr", N("Millimetre per year"), IAU, 1, YEAR * 1000},
    {C::E_VELOCITY, S::E_IMPERIAL, "ft/s", "ft/s", N("Foot per second"), YARD_POUND, 3048, 1e4},
    {C::E_VELOCITY, S::E_IMPERIAL, "ft/d", "ft/d", N("Foot per day"), YARD_POUND, 3048, DAY * 1e4},
    {C::E_VELOCITY, S::E_IMPERIAL, "ft/yr", "ft/yr", N("Foot per year"), IAU, 3048, YEAR * 1e4},
    {C::E_VELOCITY, S::E_IMPERIAL, "mph", "mph", N("Mile per hour"), YARD_POUND, 44704, 1e5},
    {C::E_VELOCITY, S::E_OTHER, "kn", "kn", N("Knot"), SP811, 463, 900},

    {C::E_ANGLE, S::E_OTHER, "rad", "rad", N("Radian"), SI, 1, 1},
    {C::E_ANGLE, S::E_OTHER, "mrad", "mrad", N("Milliradian"), SI, 1, 1000},
    {C::E_ANGLE, S::E_OTHER, "deg", "°", N("Degree"), SI, PI, 180},
    {C::E_ANGLE, S::E_OTHER, "arcmin", "′", N("Minute of arc"), SI, PI, 10800},
    {C::E_ANGLE, S::E_OTHER, "arcsec", "″", N("Second of arc"), SI, PI, 648000},
    {C::E_ANGLE, S::E_OTHER, "gon", "gon", N("Gon"), SP811, PI, 200},
    {C::E_ANGLE, S::E_OTHER, "turn", "tr", N("Turn"), SP811, PI, 0.5},

    {C::E_LONGITUDE, S::E_OTHER, "deg", "°", N("Degree"), SI, 1, 1},
    {C::E_LONGITUDE, S::E_OTHER, "arcmin", "′", N("Minute of arc"), SI, 1, 60},
    {C::E_LONGITUDE, S::E_OTHER, "arcsec", "″", N("Second of arc"), SI, 1, 3600},
    {C::E_LONGITUDE, S::E_OTHER, "rad", "rad", N("Radian"), SI, 180, PI},
    {C::E_LONGITUDE, S::E_OTHER, "gon", "gon", N("Gon"), SP811, 9, 10},

    {C::E_LATITUDE, S::E_OTHER, "deg", "°", N("Degree"), SI, 1, 1},
    {C::E_LATITUDE, S::E_OTHER, "arcmin", "′", N("Minute of arc"), SI, 1, 60},
    {C::E_LATITUDE, S::E_OTHER, "arcsec", "″", N("Second of arc"), SI, 1, 3600},
    {C::E_LATITUDE, S::E_OTHER, "rad", "rad", N("Radian"), SI, 180, PI},
    {C::E_LATITUDE, S::E_OTHER, "gon", "gon", N("Gon"), SP811, 9, 10},

    {C::E_ACTIVITY, S::E_METRIC, "Bq", "Bq", N("Becquerel"), SI, 1, 1},
    {C::E_ACTIVITY, S::E_METRIC, "mBq", "mBq", N("Millibecquerel"), SI, 1, 1000},
    {C::E_ACTIVITY, S::E_METRIC, "kBq", "kBq", N("Kilobecquerel"), SI, 1e3, 1},
    {C::E_ACTIVITY, S::E_METRIC, "MBq", "MBq", N("Megabecquerel"), SI, 1e6, 1},
    {C::E_ACTIVITY, S::E_METRIC, "GBq", "GBq", N("Gigabecquerel"), SI, 1e9, 1},
    {C::E_ACTIVITY, S::E_METRIC, "TBq", "TBq", N("Terabecquerel"), SI, 1e12, 1},
    {C::E_ACTIVITY, S::E_OTHER, "Ci", "Ci", N("Curie"), SP811, 37e9, 1},
    {C::E_ACTIVITY, S::E_OTHER, "mCi", "mCi", N("Millicurie"), SP811, 37e6, 1},
    {C::E_ACTIVITY, S::E_OTHER, "uCi", "µCi", N("Microcurie"), SP811, 37e3, 1},
    {C::E_ACTIVITY, S::E_OTHER, "nCi", "nCi", N("Nanocurie"), SP811, 37, 1},
    {C::E_ACTIVITY, S::E_OTHER, "pCi", "pCi", N("Picocurie"), SP811, 37, 1000},

    {C::E_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/kg", "Bq/kg", N("Becquerel per kilogram"), SI, 1,
     1},
    {C::E_ACTIVITY_CONCENTRATION, S::E_METRIC, "kBq/kg", "kBq/kg", N("Kilobecquerel per kilogram"),
     SI, 1000, 1},
    {C::E_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/g", "Bq/g", N("Becquerel per gram"), SI, 1000,
     1},
    {C::E_ACTIVITY_CONCENTRATION, S::E_OTHER, "pCi/g", "pCi/g", N("Picocurie per gram"), SP811, 37,
     1},

    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/m3", "Bq/m³",
     N("Becquerel per cubic metre"), SI, 1, 1},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "kBq/m3", "kBq/m³",
     N("Kilobecquerel per cubic metre"), SI, 1000, 1},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "mBq/l", "mBq/l",
     N("Millibecquerel per litre"), SI, 1, 1},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "Bq/l", "Bq/l", N("Becquerel per litre"), SI,
     1000, 1},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_METRIC, "kBq/l", "kBq/l",
     N("Kilobecquerel per litre"), SI, 1e6, 1},
    {C::E_VOLUME_ACTIVITY_CONCENTRATION, S::E_OTHER, "pCi/l", "pCi/l", N("Picocurie per litre"),
     SP811, 37, 1},
};

} // namespace

const HbuUnitRow HbuUnitTable::NONE = {C::E_NONE, S::E_OTHER, "NONE", "", N("No unit"), "", 1, 1};

const HbuUnitRow* HbuUnitTable::begin()
{
    return std::begin(TABLE);
}

const HbuUnitRow* HbuUnitTable::end()
{
    return std::end(TABLE);
}
