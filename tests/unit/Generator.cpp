#include "generator/Table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>

using namespace generator;

namespace {

using Rows = std::vector<std::string>; // row 1, the heading, comes first

Rows readRows(const std::string& table) {
    std::ifstream in(ZLT_TABLES "/" + table, std::ios::binary);
    Rows rows;
    for (std::string line; std::getline(in, line);)
        rows.push_back(line);
    return rows;
}

std::istringstream streamOf(const Rows& rows) {
    std::string text;
    for (const std::string& row : rows)
        text += row + '\n';
    return std::istringstream(text);
}

const char* const entryPoints = "gl_entry_points.tsv";
const char* const extensions = "extensions.tsv";
const char* const tokens = "gl_tokens.tsv";

// Reads all tables, with `rows` in the place of one of them; "" when all of it is right.
std::string errorOf(const std::string& table, const Rows& rows) {
    const auto stream = [&](const char* name) { return streamOf(name == table ? rows : readRows(name)); };
    std::istringstream extensionRows = stream(extensions), entryRows = stream(entryPoints),
                       tokenRows = stream(tokens);
    try {
        readEntryPoints(entryRows, readExtensions(extensionRows));
        readTokens(tokenRows);
    } catch (const TableError& error) {
        return error.what();
    }
    return "";
}

TEST(Table, HoldsAsManyOfEachKindAsTheRulesSay) {
    std::istringstream extensionRows = streamOf(readRows(extensions)),
                       entryRows = streamOf(readRows(entryPoints)), tokenRows = streamOf(readRows(tokens));
    const std::vector<EntryPoint> entries = readEntryPoints(entryRows, readExtensions(extensionRows));
    std::map<std::string, int> results;
    std::set<std::string> groups;
    int core11 = 0;
    for (const EntryPoint& entry : entries) {
        ++results[entry.plainResult];
        groups.insert(entry.group);
        core11 += entry.isCore11();
    }
    ASSERT_EQ(1833u, entries.size());
    EXPECT_EQ(336, core11);
    EXPECT_EQ(1u + 152u, groups.size()) << "GL 1.1 and the extensions";
    const std::map<std::string, int> expected = {
        {"void", 1752}, {"unsigned char", 38},       {"unsigned int", 23},    {"int", 11},
        {"void*", 5},   {"const unsigned char*", 2}, {"struct __GLsync*", 1}, {"long long", 1}};
    EXPECT_EQ(expected, results);
    EXPECT_EQ("DrawRangeElements", entries[336].name);
    EXPECT_EQ("AddSwapHintRectWIN", entries.back().name);
    EXPECT_EQ(2211u, readTokens(tokenRows).size());
}

// One cell of a table is damaged; the message names the table, the row and what is wrong.
struct Damage {
    const char *name, *table;
    std::size_t row, column;
    const char* cell;
    const char* message; // behind "table, row N: "
};

const Damage damages[] = {
    {"Heading", entryPoints, 1, 3, "title",
     "the heading is not 'virtual_slot\ttable_slot\tgroup\tname\tresult\tparameters'"},
    {"ColumnTooMany", entryPoints, 2, 3, "Accum\t", "7 columns instead of 6"},
    {"SlotNotANumber", entryPoints, 5, 0, "3x", "'3x' is not a 32-bit number"},
    {"SlotTooLarge", entryPoints, 5, 0, "4294967296", "'4294967296' is not a 32-bit number"},
    {"SlotOutOfOrder", entryPoints, 5, 0, "4", "virtual slot 4 instead of 3"},
    {"TableSlotForCore", entryPoints, 2, 1, "0", "table slot 0 instead of -"},
    {"TableSlotWrong", entryPoints, 338, 1, "1", "table slot 1 instead of 0"},
    {"GroupUnknown", entryPoints, 2, 2, "GL_VERSION_1_0",
     "group 'GL_VERSION_1_0' where entry 1 of 336 of 'GL_VERSION_1_1' is due"},
    {"GroupEndsEarly", entryPoints, 337, 2, "GL_VERSION_1_2",
     "group 'GL_VERSION_1_2' where entry 336 of 336 of 'GL_VERSION_1_1' is due"},
    {"GroupGoesOn", entryPoints, 338, 2, "GL_VERSION_1_1",
     "group 'GL_VERSION_1_1' where entry 1 of 4 of 'GL_VERSION_1_2' is due"},
    {"CoreNotSorted", entryPoints, 3, 3, "Absent", "'Absent' stands after 'Accum'"},
    {"NameTwice", entryPoints, 400, 3, "BindTexture", "the name 'BindTexture' stands twice"},
    {"NameEmpty", entryPoints, 400, 3, "", "'' is not a name"},
    {"NameNotAName", entryPoints, 400, 3, "2Darc", "'2Darc' is not a name"},
    {"ResultUnknown", entryPoints, 400, 4, "GLfixed", "unknown type 'GLfixed'"},
    {"ResultConstant", entryPoints, 400, 4, "const GLint", "unknown type 'const GLint'"},
    {"ParameterUnknown", entryPoints, 3, 5, "GLenum func, GLfixed ref", "unknown type 'GLfixed'"},
    {"ParameterReference", entryPoints, 3, 5, "GLenum*& func", "unknown type 'GLenum*&'"},
    {"ParameterVoid", entryPoints, 3, 5, "void func", "a parameter of type void"},
    {"ParameterUnnamed", entryPoints, 3, 5, "GLenum", "'GLenum' is not a type and a name"},
    {"ParameterBadName", entryPoints, 3, 5, "GLenum f-1", "'f-1' is not a parameter name"},
    {"ParameterTwice", entryPoints, 3, 5, "GLenum f, GLint f", "two parameters are named 'f'"},
    {"ParameterTaken", entryPoints, 3, 5, "GLenum file", "the parameter name 'file' is taken"},
    {"ExtensionGap", extensions, 4, 0, "3", "value 3 instead of 2"},
    {"ExtensionTwice", extensions, 4, 1, "GL_VERSION_1_3", "the name 'GL_VERSION_1_3' stands twice"},
    {"ExtensionCount", extensions, 4, 2, "-1", "'-1' is not a 32-bit number"},
    {"TokenNoDigits", tokens, 3, 0, "0x", "'0x' is not a 32-bit number"},
    {"TokenTooLarge", tokens, 2212, 0, "0x100000000", "'0x100000000' is not a 32-bit number"},
    {"TokenTwice", tokens, 3, 0, "0x0", "value 0x0 does not follow the row before it"},
    {"TokenNameTwice", tokens, 3, 1, "GL_POINTS", "the name 'GL_POINTS' stands twice"},
};

std::string place(const std::string& table, std::size_t row) {
    return table + ", row " + std::to_string(row) + ": ";
}

TEST(Table, StopsAtADamagedCellWithTheRowAndTheReason) {
    for (const Damage& damage : damages) {
        Rows rows = readRows(damage.table);
        std::string& row = rows.at(damage.row - 1);
        std::size_t begin = 0;
        for (std::size_t i = 0; i < damage.column; ++i)
            begin = row.find('\t', begin) + 1;
        row.replace(begin, std::min(row.find('\t', begin), row.size()) - begin, damage.cell);
        EXPECT_EQ(place(damage.table, damage.row) + damage.message, errorOf(damage.table, rows))
            << damage.name;
    }
}

TEST(Table, StopsWhereAGroupIsCutShortOrRunsOver) {
    Rows rows = readRows(entryPoints);
    rows.push_back("1833\t1497\tGL_WIN_swap_hint\tNext\tvoid\t");
    EXPECT_EQ(place(entryPoints, 1835) + "more entries than the groups have", errorOf(entryPoints, rows));
    rows.resize(1833);
    EXPECT_EQ(place(entryPoints, 1834) + "the table ends at entry 1 of 'GL_SUNX_constant_data'",
              errorOf(entryPoints, rows));
}

} // namespace
