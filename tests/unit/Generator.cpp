#include "generator/Emit.h"
#include "generator/Table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
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
const char* const wglFunctions = "wgl_extension_functions.tsv";
const char* const wglEntryPoints = "wgl_entry_points.tsv";

// Reads all tables, with `rows` in the place of one of them; "" when all of it is right.
std::string errorOf(const std::string& table, const Rows& rows) {
    const auto stream = [&](const char* name) { return streamOf(name == table ? rows : readRows(name)); };
    std::istringstream extensionRows = stream(extensions), entryRows = stream(entryPoints),
                       tokenRows = stream(tokens), wglRows = stream(wglFunctions),
                       wglEntryRows = stream(wglEntryPoints);
    try {
        const std::vector<Extension> known = readExtensions(extensionRows);
        readEntryPoints(entryRows, known);
        readTokens(tokenRows);
        readWglFunctions(wglRows, known);
        readWglEntryPoints(wglEntryRows);
    } catch (const TableError& error) {
        return error.what();
    }
    return "";
}

// One cell of a table is damaged; the message names the table, the row and what is wrong.
struct Damage {
    const char* table;
    std::size_t row, column;
    const char* cell;
    const char* message; // behind "table, row N: "
};

const Damage damages[] = {
    {entryPoints, 1, 3, "title",
     "the heading is not 'virtual_slot\ttable_slot\tgroup\tname\tresult\tparameters'"},
    {entryPoints, 2, 3, "Accum\t", "7 columns instead of 6"},
    {entryPoints, 5, 0, "3x", "'3x' is not a 32-bit number"},
    {entryPoints, 5, 0, "4", "virtual slot 4 instead of 3"},
    {entryPoints, 2, 1, "0", "table slot 0 instead of -"},
    {entryPoints, 337, 2, "GL_VERSION_1_2",
     "group 'GL_VERSION_1_2' where entry 336 of 336 of 'GL_VERSION_1_1' is due"},
    {entryPoints, 3, 3, "Absent", "'Absent' stands after 'Accum'"},
    {entryPoints, 400, 3, "BindTexture", "the name 'BindTexture' stands twice"},
    {entryPoints, 400, 3, "2Darc", "'2Darc' is not a name"},
    {entryPoints, 400, 4, "GLfixed", "unknown type 'GLfixed'"},
    {entryPoints, 3, 5, "GLenum func, GLfixed ref", "unknown type 'GLfixed'"},
    {entryPoints, 3, 5, "void func", "a parameter of type void"},
    {entryPoints, 3, 5, "GLenum", "'GLenum' is not a type and a name"},
    {entryPoints, 3, 5, "GLenum f, GLint f", "two parameters are named 'f'"},
    {entryPoints, 3, 5, "GLenum file", "the parameter name 'file' is taken"},
    {extensions, 4, 0, "3", "value 3 instead of 2"},
    {tokens, 3, 0, "0x", "'0x' is not a 32-bit number"},
    {tokens, 3, 0, "0x0", "value 0x0 does not follow the row before it"},
    {tokens, 3, 1, "GL_POINTS", "the name 'GL_POINTS' stands twice"},
    {wglFunctions, 3, 0, "2", "index 2 instead of 1"},
    {wglFunctions, 3, 1, "332", "'WGL_ARB_buffer_region' is not the WGL extension of value 332"},
    {wglFunctions, 3, 1, "368", "'WGL_ARB_buffer_region' is not the WGL extension of value 368"},
    {wglFunctions, 3, 2, "GL_ARB_multitexture",
     "'GL_ARB_multitexture' is not the WGL extension of value 331"},
    {wglFunctions, 3, 3, "createBufferRegionARB", "'createBufferRegionARB' does not begin with wgl"},
    {wglFunctions, 4, 3, "wglCreateBufferRegionARB", "the name 'wglCreateBufferRegionARB' stands twice"},
    {wglEntryPoints, 4, 0, "3", "virtual slot 3 instead of 2"},
    {wglEntryPoints, 13, 1, "wglCopyContext", "the name 'CopyContext' stands twice"},
    {wglEntryPoints, 13, 1, "wgl", "'' is not a name"},
    {wglEntryPoints, 2, 2, "GLboolean", "unknown type 'GLboolean'"},
    {wglEntryPoints, 17, 3, "HDC device, const COLORREF colors", "unknown type 'const COLORREF'"},
    {wglEntryPoints, 3, 3, "HDC device, HDC device", "two parameters are named 'device'"},
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
        EXPECT_EQ(place(damage.table, damage.row) + damage.message, errorOf(damage.table, rows));
    }
}

TEST(Table, StopsWhereAGroupIsCutShortOrRunsOver) {
    Rows rows = readRows(entryPoints);
    EXPECT_EQ("", errorOf(entryPoints, rows));
    rows.push_back("1833\t1497\tGL_WIN_swap_hint\tNext\tvoid\t");
    EXPECT_EQ(place(entryPoints, 1835) + "more entries than the groups have", errorOf(entryPoints, rows));
    rows.resize(1833);
    EXPECT_EQ(place(entryPoints, 1834) + "the table ends at entry 1 of 'GL_SUNX_constant_data'",
              errorOf(entryPoints, rows));

    rows = readRows(wglFunctions);
    std::swap(rows[1], rows[2]);
    rows[1][0] = '0';
    rows[2][0] = '1';
    EXPECT_EQ(place(wglFunctions, 3) + "'WGL_3DL_stereo_control' stands too late",
              errorOf(wglFunctions, rows));
    rows = readRows(wglFunctions);
    rows.pop_back();
    EXPECT_EQ(place(wglFunctions, 96) + "'WGL_OML_sync_control' has 5 functions instead of 6",
              errorOf(wglFunctions, rows));

    rows = readRows(wglEntryPoints);
    rows.push_back("20\twglNext\tBOOL\t");
    EXPECT_EQ(place(wglEntryPoints, 22) + "more than 20 entries: a new one needs its form in "
                                          "wglRekorder.cpp, and the number in Table.h",
              errorOf(wglEntryPoints, rows));
    rows.resize(20);
    EXPECT_EQ(place(wglEntryPoints, 21) + "the table ends at entry 19 of 20", errorOf(wglEntryPoints, rows));
}

struct Change {
    const char* name;
    void (*change)(std::vector<EntryPoint>& entries);
    std::string faults;
};

const Change changes[] = {
    {"an entry without pointers more", [](std::vector<EntryPoint>& entries) { entries.emplace_back(); },
     "857 functions without pointers instead of 856"},
    {"an entry with a form of its own less",
     [](std::vector<EntryPoint>& entries) {
         std::erase_if(entries, [](const EntryPoint& entry) { return entry.name == "Uniform3ivARB"; });
     },
     "66 functions with a form of their own instead of 67"},
    {"a pointer that became an array",
     [](std::vector<EntryPoint>& entries) {
         std::ranges::find(entries, "Color3fv", &EntryPoint::name)->parameters.front().array = "[3]";
     },
     "857 functions without pointers instead of 856, 909 functions that leave a marker instead of 910"},
};

TEST(Table, TheRecorderSaysWhichCountDiffersFromTheDocumentedOne) {
    std::istringstream extensionRows = streamOf(readRows(extensions)),
                       entryRows = streamOf(readRows(entryPoints));
    const std::vector<EntryPoint> entries = readEntryPoints(entryRows, readExtensions(extensionRows));
    EXPECT_NO_THROW(checkRekorderSplit(entries));
    for (const Change& change : changes) {
        SCOPED_TRACE(change.name);
        std::vector<EntryPoint> changed = entries;
        change.change(changed);
        try {
            checkRekorderSplit(changed);
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& error) {
            EXPECT_EQ("the recorder has " + change.faults +
                          ": correct the table, or the numbers in generator/EmitRekorder.cpp, "
                          "src/extensionator/OpenGLRekorder.h and docs/recording-format.md",
                      std::string(error.what()));
        }
    }
}

} // namespace
