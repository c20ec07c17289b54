#!/usr/bin/env python3
"""Writes the catalog of coordinate systems that comes with the library.

    scripts/make-cs-catalog.py [--check] [--database proj.db]

The codes are listed here; the names are those of the PROJ database, letter by letter. A code that the
database lacks, or has deprecated, is an error. With --check the file is compared, not written: a newer
database may have other names, which is for people to look at.
"""
import argparse
import pathlib
import sqlite3
import sys
from xml.sax.saxutils import escape

TARGET = pathlib.Path(__file__).resolve().parent.parent / "util/resources/cs_catalog.xml"
DATABASES = ["/usr/share/proj/proj.db", "/usr/local/share/proj/proj.db"]


def span(first, last):
    return list(range(first, last + 1))


# Where one number gives a system of both registers, the pair is one that PROJ finds equivalent but for
# the axis order. The systems of France take both codes, because the IGN is their authority; of the
# others WGS 84 alone does.
IGNF = {
    4326: "WGS84G", 4171: "RGF93G", 4624: "RGFG95G", 4627: "RGR92G", 4470: "RGM04G", 5489: "RGAF09G",
    4463: "RGSPM06G", 7073: "RGTAAF07G",
    2154: "LAMB93", 3942: "RGF93CC42", 3943: "RGF93CC43", 3944: "RGF93CC44", 3945: "RGF93CC45",
    3946: "RGF93CC46", 3947: "RGF93CC47", 3948: "RGF93CC48", 3949: "RGF93CC49", 3950: "RGF93CC50",
    27572: "LAMBE", 27562: "LAMB2", 27564: "LAMB4", 27574: "LAMB4C",
    5490: "RGAF09UTM20", 3313: "RGFG95UTM21", 2972: "RGFG95UTM22", 2975: "RGR92UTM40S",
    4471: "RGM04UTM38S", 4467: "RGSPM06U21", 3296: "RGPFUTM5S", 3297: "RGPFUTM6S", 3298: "RGPFUTM7S",
    3299: "RGPFUTM8S", 7074: "RGTAAFUTM37S", 7076: "RGTAAFUTM39S", 7079: "RGTAAFUTM42S",
    7080: "RGTAAFUTM43S", 8455: "RGTAAFUTM53S", 2970: "GUAD48UTM20", 2973: "MART38UTM20",
    3312: "CSG67UTM21", 2971: "CSG67UTM22", 2980: "MAYO50UTM38S", 2987: "STPM50UTM21",
    3060: "IGN72UTM58S",
}

GROUPS = [
    ("The world", [4326, 4322, 3857, 3395, 4087, 8857, 6933]),
    ("Polar regions", [3413, 3995, 3996, 3031, 3976, 32661, 32761, 3571, 3573, 3575, 6931, 6932]),
    ("WGS 84, UTM zones", span(32601, 32660) + span(32701, 32760)),
    ("France", [4171, 4275, 4807, 2154] + span(3942, 3950) + span(27561, 27564) + span(27571, 27574)),
    ("France overseas", [4624, 4627, 4470, 5489, 4463, 7073, 4749, 4687, 5490, 3313, 2972, 2975, 4471, 4467,
                         3296, 3297, 3298, 3299, 7074, 7076, 7079, 7080, 8455, 3163, 3169, 3170, 3171, 2970,
                         2973, 3312, 2971, 3727, 2980, 2987, 3060]),
    ("Europe", [4258, 4230, 3034, 3035] + span(25828, 25837) + span(23028, 23038)),
    ("British Isles", [4277, 27700, 4173, 29903, 2157]),
    ("Benelux", [4289, 28992, 4313, 31370, 3812, 4181, 2169]),
    ("Switzerland and Austria", [4149, 4150, 2056, 21781, 4312, 31254, 31255, 31256, 31287, 3416]),
    ("Germany", [4314, 31466, 31467, 31468, 31469, 4178, 2397, 2398, 2399, 4647]),
    ("Iberia", [3763, 27493, 4083]),
    ("Italy and Greece", [4265, 3003, 3004, 6706, 6707, 6708, 7791, 7792, 4121, 2100]),
    ("Northern Europe", [4619, 3006, 3021, 3067, 2393, 4273, 27391, 27393, 5105, 5110, 3301, 3059, 3346,
                         4659, 3057, 8088]),
    ("Central and eastern Europe", [4156, 5514, 2180, 2176, 2177, 2178, 2179, 23700, 3794, 3765, 3844, 4284,
                                    28404, 28405, 28406, 28407, 28408, 28409, 28410, 5253, 5254, 5255, 5256]),
    ("North America", [4267, 4269, 6318, 5070, 3338, 3005, 3347, 3348, 3978, 3979, 4617, 2950, 32198, 6362,
                       6372] + span(26907, 26921) + span(26707, 26721) + span(2955, 2962)),
    ("United States, state planes", [2225, 2226, 2227, 2228, 2229, 2230, 2231, 2232, 2233, 2236, 2263, 2271,
                                     2272, 2276, 2277, 2278, 2285, 2286, 2222, 2223, 2224, 26941, 26942,
                                     26943, 26944, 26945, 26946]),
    ("South America", [4674, 4618, 4248] + span(31972, 31985)
     + [29168, 29169, 29189, 29190, 29191, 29192, 29193, 5880, 24877, 24878, 24879, 5343, 5344, 5345, 9377]),
    ("Africa", [4148, 2048, 2049, 2050, 2051, 2052, 2053, 2054, 4222, 4209, 20935, 20936, 4210, 21036, 21037,
                4201, 20137, 22992, 4261, 26191, 22234, 22235, 26331, 26332, 2136]),
    ("Australia and Pacific", [4283, 7844, 4202, 4203] + span(28349, 28356) + span(7849, 7856)
     + [3112, 9473, 3577, 4167, 2193, 4272, 27200, 3832]),
    ("Asia", [4490, 4547, 4548, 4549, 4612, 6668] + span(6669, 6687)
     + [4737, 5179, 5186, 3826, 2326, 3414, 4238, 9470, 23830, 24047, 24048, 4239, 7755, 20437, 20438, 2039]),
]

FAVORITES = {"geographic": [4326, 4258], "projected": [3857, 3035, 2154]}


def find_database(given):
    for path in [given] if given else DATABASES:
        if pathlib.Path(path).exists():
            return path
    sys.exit("make-cs-catalog: there is no proj.db; --database names one")


def element(code, names, indent, attribute=""):
    pad = " " * indent
    lines = [f"{pad}<cs{attribute}>", f"{pad}    <name>{escape(names[code])}</name>",
             f"{pad}    <epsg>{code}</epsg>"]
    if code in IGNF:
        lines.append(f"{pad}    <ignf>{IGNF[code]}</ignf>")
    return lines + [f"{pad}</cs>"]


def make(database):
    connection = sqlite3.connect(f"file:{database}?mode=ro", uri=True)

    def name_of(authority, code):
        row = connection.execute("select name, deprecated, type from crs_view where auth_name = ? and code = ?",
                                 (authority, code)).fetchone()
        if row is None or row[1]:
            sys.exit(f"make-cs-catalog: {authority}:{code} is {'deprecated' if row else 'unknown'}")
        if row[2] not in ("geographic 2D", "projected"):
            sys.exit(f"make-cs-catalog: {authority}:{code} is {row[2]}")
        return row[0]

    codes = [code for _, group in GROUPS for code in group]
    for code in set(code for code in codes if codes.count(code) > 1):
        sys.exit(f"make-cs-catalog: {code} stands twice")
    names = {code: name_of("EPSG", str(code)) for code in codes}
    if len(set(names.values())) != len(codes):
        sys.exit("make-cs-catalog: a name stands twice")
    for code, ignf in IGNF.items():
        if code not in names:
            sys.exit(f"make-cs-catalog: {ignf} goes with {code}, which is not listed")
        name_of("IGNF", ignf)

    lines = ["<catalog>", "    <version>1</version>"]
    for title, group in GROUPS:
        lines.append(f"    <!-- {title} -->")
        for code in group:
            lines += element(code, names, 4)
    lines.append("    <favorites>")
    for mode, favorites in FAVORITES.items():
        lines.append(f"        <{mode}>")
        for rank, code in enumerate(favorites):
            lines += element(code, names, 12, f' rank="{rank}"')
        lines.append(f"        </{mode}>")
    return "\n".join(lines + ["    </favorites>", "</catalog>", ""])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--database")
    options = parser.parse_args()
    text = make(find_database(options.database))
    if not options.check:
        TARGET.write_text(text, encoding="utf-8")
    elif TARGET.read_text(encoding="utf-8") != text:
        sys.exit(f"make-cs-catalog: {TARGET} is not what this script makes of the database")


main()
