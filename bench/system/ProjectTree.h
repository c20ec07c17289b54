#pragma once

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

/// Makes the files of a project as users have them, the same on every run: one part in eight small
/// XML files of objects, five parts columns of reals, the rest delimited text.
class ProjectTree
{
public:
    /// Below the directory, which must be there; about so many bytes.
    static void create(const std::filesystem::path& directory, std::int64_t size)
    {
        ProjectTree tree;
        for (int folder = 0; folder < 16; ++folder) // 10 KB each on average
            tree.writeObjects(directory / "objects" / std::to_string(folder), size / 8 / 16);
        for (int column = 0; column < 50; ++column)
            tree.writeColumn(directory / "columns", column, size * 5 / 8 / 50);
        for (int table = 0; table < 4; ++table)
            tree.writeTable(directory / "import", table, size / 4 / 4);
    }

private:
    using Bytes = std::string;

    static void write(const std::filesystem::path& directory, const std::string& name,
                      const Bytes& bytes)
    {
        std::filesystem::create_directories(directory);
        std::ofstream file(directory / name, std::ios::binary | std::ios::app);
        if (!file.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
            throw std::runtime_error("cannot write " + name);
    }

    static void append(Bytes& bytes, double value)
    {
        char text[32];
        bytes.append(text, std::to_chars(text, text + sizeof text, value).ptr);
    }

    std::string uuid()
    {
        char text[40];
        const std::uint64_t high = m_random();
        const std::uint64_t low = m_random();
        std::snprintf(text, sizeof text, "%08x-%04x-4%03x-a%03x-%012llx",
                      static_cast<unsigned>(high), static_cast<unsigned>(high >> 32 & 0xffff),
                      static_cast<unsigned>(high >> 48 & 0xfff), static_cast<unsigned>(low & 0xfff),
                      static_cast<unsigned long long>(low >> 16));
        return text;
    }

    /// A grade as laboratories report it: lognormal, of three or four digits.
    double grade()
    {
        const double value = m_grade(m_random);
        const double unit =
            std::pow(10, std::floor(std::log10(value)) - 2 - double(m_random() % 2));
        return std::round(value / unit) * unit;
    }

    void writeObjects(const std::filesystem::path& directory, std::int64_t size)
    {
        static const char* const RELATIONS[] = {"Style", "SceneItem", "DataSet", "Legend"};
        while (size > 0) {
            const std::string relation = RELATIONS[m_random() % 4];
            const std::string id = uuid();
            Bytes xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<" + relation + ">\n    <id>" +
                        id + "</id>\n    <version>100</version>\n    <fields type=\"QMap\">\n";
            const std::size_t wanted = 1000 + m_random() % 19000;
            for (int field = 0; xml.size() < wanted; ++field) {
                const std::string name = "field" + std::to_string(field);
                xml += "        <" + name + ">";
                switch (field % 3) {
                case 0:
                    append(xml, m_coordinate(m_random));
                    break;
                case 1:
                    append(xml, grade());
                    break;
                default:
                    xml += "text of object " + uuid();
                }
                xml += "</" + name + ">\n";
            }
            xml += "    </fields>\n</" + relation + ">\n";
            write(directory, relation + "_" + id + ".xml", xml);
            size -= static_cast<std::int64_t>(xml.size());
        }
    }

    /// Every third column are coordinates, in millimetres, the others grades; 1 in 64 undefined.
    void writeColumn(const std::filesystem::path& directory, int column, std::int64_t size)
    {
        Bytes block;
        while (size > 0) {
            block.clear();
            for (int i = 0; i < 65536 && size > 0; ++i, size -= 8) {
                double value =
                    column % 3 == 0 ? std::round(m_coordinate(m_random) * 1000) / 1000 : grade();
                if (m_random() % 64 == 0)
                    value = std::numeric_limits<double>::quiet_NaN();
                block.append(reinterpret_cast<const char*>(&value), sizeof value);
            }
            write(directory, "column" + std::to_string(column) + ".bin", block);
        }
    }

    void writeTable(const std::filesystem::path& directory, int table, std::int64_t size)
    {
        static const char* const ROCKS[] = {"granite", "gneiss", "schist", "amphibolite"};
        Bytes block = "hole,x,y,z,cu,au,rock\n";
        for (int row = 0; size > 0; block.clear()) {
            for (int i = 0; i < 10000 && size > static_cast<std::int64_t>(block.size()); ++i) {
                block += "DH" + std::to_string(row++ / 50);
                for (int k = 0; k < 3; ++k) {
                    block += ',';
                    append(block, std::round(m_coordinate(m_random) * 1000) / 1000);
                }
                for (int k = 0; k < 2; ++k) {
                    block += ',';
                    append(block, grade());
                }
                block += ',';
                block += ROCKS[m_random() % 4];
                block += '\n';
            }
            write(directory, "table" + std::to_string(table) + ".csv", block);
            size -= static_cast<std::int64_t>(block.size());
        }
    }

    std::mt19937_64 m_random{17};
    std::uniform_real_distribution<double> m_coordinate{300000, 700000};
    std::lognormal_distribution<double> m_grade{0, 1};
};
