#include "generator/Emit.h"
#include "generator/Table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

using namespace generator;

namespace {

using Rows = std::vector<std::string>; // row 1, the heading, comes first

const char* const entryPoints = "gl_entry_points.tsv";
const char* const extensions = "extensions.tsv";
const char* const tokens = "gl_tokens.tsv";
const char* const wglFunctions = "wgl_extension_functions.tsv";
const char* const wglEntryPoints = "wgl_entry_points.tsv";
const char* const laterFunctions = "gl_later_functions.tsv";
const char* const systemFunctions = "opengl32_functions.tsv";

Rows readAllRows(const std::string& table) {
    std::ifstream in(ZLT_TABLES "/" + table, std::ios::binary);
    Rows rows;
    for (std::string line; std::getline(in, line);)
        rows.push_back(line);
    return rows;
}

// Without what was added to a table later: it would move the rows below.
Rows readRows(const std::string& table) {
    static const std::map<std::string, std::size_t> counts = {
        {entryPoints, 1834}, {extensions, 369}, {wglFunctions, 96}};
    Rows rows = readAllRows(table);
    if (const auto found = counts.find(table); found != counts.end())
        rows.resize(found->second);
    return rows;
}

std::istringstream streamOf(const Rows& rows) {
    std::string text;
    for (const std::string& row : rows)
        text += row + '\n';
    return std::istringstream(text);
}

// Reads all tables, with `changed` in the place of some of them; "" when all of it is right.
std::string errorOf(const std::map<std::string, Rows>& changed) {
    const auto stream = [&](const char* name) {
        const auto found = changed.find(name);
        return streamOf(found == changed.end() ? readRows(name) : found->second);
    };
    std::istringstream extensionRows = stream(extensions), entryRows = stream(entryPoints),
                       tokenRows = stream(tokens), wglRows = stream(wglFunctions),
                       wglEntryRows = stream(wglEntryPoints), laterRows = stream(laterFunctions),
                       systemRows = stream(systemFunctions);
    try {
        const std::vector<Extension> known = readExtensions(extensionRows);
        const std::vector<EntryPoint> entries = readEntryPoints(entryRows, known);
        readTokens(tokenRows);
        readWglFunctions(wglRows, known);
        readWglEntryPoints(wglEntryRows);
        readLaterFunctions(laterRows, entries);
        readSystemFunctions(systemRows);
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
    {entryPoints, 4, 5, "GLsizei n, GLuint* result", "the parameter name 'result' is taken"},
    {entryPoints, 400, 3, "glArc", "'glArc' is not a name without gl in front"},
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
    {wglFunctions, 2, 5, "HDC hDC, HFOO uState", "unknown type 'HFOO'"},
    {laterFunctions, 3, 0, "Absent", "Absent does not follow the row before it"},
    {laterFunctions, 2, 0, "BindTexture", "the name 'BindTexture' stands twice"},
    {systemFunctions, 3, 0, "Glm", "Glm does not follow the row before it"},
    {systemFunctions, 3, 1, "around", "the way around is neither own nor through"},
    {wglEntryPoints, 4, 0, "3", "virtual slot 3 instead of 2"},
    {wglEntryPoints, 13, 1, "wglCopyContext", "the name 'CopyContext' stands twice"},
    {wglEntryPoints, 13, 1, "wgl", "'' is not a name"},
    {wglEntryPoints, 2, 2, "GLint", "unknown type 'GLint'"},
    {wglEntryPoints, 17, 3, "HDC device, const COLORREF colors", "unknown type 'const COLORREF'"},
    {wglEntryPoints, 3, 3, "HDC device, HDC device", "two parameters are named 'device'"},
};

std::string place(const std::string& table, std::size_t row) {
    return table + ", row " + std::to_string(row) + ": ";
}

TEST(TableTest, aDamagedCellIsNamedWithTheRowAndTheReason) {
    for (const Damage& damage : damages) {
        Rows rows = readRows(damage.table);
        std::string& row = rows.at(damage.row - 1);
        std::size_t begin = 0;
        for (std::size_t i = 0; i < damage.column; ++i)
            begin = row.find('\t', begin) + 1;
        row.replace(begin, std::min(row.find('\t', begin), row.size()) - begin, damage.cell);
        EXPECT_EQ(place(damage.table, damage.row) + damage.message, errorOf({{damage.table, rows}}));
    }
}

TEST(TableTest, aGroupThatIsCutShortOrRunsOverIsNoticed) {
    Rows rows = readRows(entryPoints);
    EXPECT_EQ("", errorOf({{entryPoints, rows}}));
    rows = readRows(wglFunctions);
    std::swap(rows[1], rows[2]);
    rows[1][0] = '0';
    rows[2][0] = '1';
    EXPECT_EQ(place(wglFunctions, 3) + "'WGL_3DL_stereo_control' stands too late",
              errorOf({{wglFunctions, rows}}));
    rows = readRows(wglFunctions);
    rows.pop_back();
    EXPECT_EQ(place(wglFunctions, 96) + "'WGL_OML_sync_control' has 5 functions instead of 6",
              errorOf({{wglFunctions, rows}}));

    rows = readRows(wglEntryPoints);
    rows.push_back("20\twglNext\tBOOL\t");
    EXPECT_EQ(place(wglEntryPoints, 22) + "more than 20 entries: a new one needs its form in "
                                          "wglRekorder.cpp, and the number in Table.h",
              errorOf({{wglEntryPoints, rows}}));
    rows.resize(20);
    EXPECT_EQ(place(wglEntryPoints, 21) + "the table ends at entry 19 of 20",
              errorOf({{wglEntryPoints, rows}}));
}

// Rows at the end of the tables, or above, with slots and values as they should be there.
struct Addition {
    const char* name;
    std::string message; // "" when the tables are right
    std::vector<std::string> extensions{}, entryPoints{};
    void (*change)(Rows& extensions, Rows& entryPoints) = nullptr;
};

// Puts a row in, and moves the numbers in the first columns of those below.
void insert(Rows& rows, std::size_t at, std::size_t columns, const std::string& row) {
    for (std::size_t i = at; i < rows.size(); ++i) {
        std::size_t begin = 0;
        for (std::size_t column = 0; column < columns; ++column) {
            const std::size_t end = rows[i].find('\t', begin);
            const std::string number = std::to_string(std::stoul(rows[i].substr(begin, end - begin)) + 1);
            rows[i].replace(begin, end - begin, number);
            begin += number.size() + 1;
        }
    }
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(at), row);
}

const char* const arc = "340\t4\tGL_VERSION_1_2\tArc\tvoid\t";
const std::string move = ": rows were put in or taken out above, but new ones belong at the end";

const std::string paths = "1833\t1497\tGL_KHR_paths\t";

const Addition additions[] = {
    {"a group of GL behind those of WGL",
     "",
     {"368\tGL_KHR_paths\t2"},
     {paths + "ArcKHR\tvoid\tGLfloat angle", "1834\t1498\tGL_KHR_paths\tIsArcKHR\tGLboolean\tGLuint arc"}},
    {"groups of GL and WGL without functions", "", {"368\tGL_ARB_paths\t0", "369\tWGL_ARB_paths\t0"}},
    {"a function too few",
     place(entryPoints, 1836) + "the table ends at entry 1 of 'GL_KHR_paths'",
     {"368\tGL_KHR_paths\t2"},
     {paths + "ArcKHR\tvoid\t"}},
    {"a function of a group that isn't there",
     place(entryPoints, 1835) + "more entries than extensions.tsv gives the groups",
     {},
     {paths + "ArcKHR\tvoid\t"}},
    {"an entry that is there",
     place(entryPoints, 1835) + "the name 'Begin' stands twice",
     {"368\tGL_KHR_paths\t1"},
     {paths + "Begin\tvoid\t"}},
    {"an extension of neither GL nor WGL",
     place(extensions, 370) + "'GLX_KHR_paths' begins neither with GL_ nor with WGL_",
     {"368\tGLX_KHR_paths\t0"}},
    {"a version that isn't loaded",
     place(extensions, 370) +
         "'GL_VERSION_3_1' is a version that ExtensionManager::loadVersions() never loads",
     {"368\tGL_VERSION_3_1\t0"}},
    {"an extension that is there",
     place(extensions, 370) + "the name 'GL_ARB_sync' stands twice",
     {"368\tGL_ARB_sync\t0"}},
    {"an extension whose enumerator is there",
     place(extensions, 370) + "the name 'GL_ARB_SYNC' stands twice",
     {"368\tGL_ARB_Sync\t0"}},
    {"an extension whose enumerator is a macro of GL",
     place(extensions, 370) + "'GL_ARB_SYNC2' has no small letter",
     {"368\tGL_ARB_SYNC2\t0"}},
    {.name = "an extension in the order of the names",
     .message =
         place(extensions, 330) + "value 328 is 'GL_WIN_specular_fog' instead of 'GL_WIN_swap_hint'" + move,
     .change = [](Rows& extensions, Rows&) { insert(extensions, 24, 1, "23\tGL_ARB_a\t0"); }},
    {.name = "an extension in front of those of WGL",
     .message = place(extensions, 369) +
                "value 367 is 'WGL_NV_video_output' instead of 'WGL_OML_sync_control'" + move,
     .change = [](Rows& extensions, Rows&) { insert(extensions, 330, 1, "329\tGL_WIN_z\t0"); }},
    {.name = "a table without its end",
     .message = place(extensions, 369) + "the table ends in front of 'WGL_OML_sync_control'",
     .change = [](Rows& extensions, Rows&) { extensions.pop_back(); }},
    {.name = "an entry more than its group has",
     .message = place(entryPoints, 342) +
                "'GL_VERSION_1_2' has more entries than the 4 that extensions.tsv gives it",
     .change = [](Rows&, Rows& entryPoints) { insert(entryPoints, 341, 2, arc); }},
    {.name = "an entry in a group above",
     .message = place(entryPoints, 1834) +
                "virtual slot 1832 is 'FinishTextureSUNX' instead of 'AddSwapHintRectWIN'" + move,
     .change =
         [](Rows& extensions, Rows& entryPoints) {
             extensions[1].back() = '5';
             insert(entryPoints, 341, 2, arc);
         }},
};

TEST(TableTest, takesWhatIsNewAtItsEndAlone) {
    for (const Addition& addition : additions) {
        SCOPED_TRACE(addition.name);
        Rows extensionRows = readRows(extensions), entryRows = readRows(entryPoints);
        extensionRows.insert(extensionRows.end(), addition.extensions.begin(), addition.extensions.end());
        entryRows.insert(entryRows.end(), addition.entryPoints.begin(), addition.entryPoints.end());
        if (addition.change)
            addition.change(extensionRows, entryRows);
        EXPECT_EQ(addition.message, errorOf({{extensions, extensionRows}, {entryPoints, entryRows}}));
    }
    Rows rows = readRows(extensions);
    for (std::size_t value = rows.size() - 1; value <= 416; ++value)
        rows.push_back(std::to_string(value) + "\tGL_ARB_a" + std::to_string(value) + "\t0");
    EXPECT_EQ(place(extensions, 418) + "value 416 is not below 416, which stands for names that aren't known",
              errorOf({{extensions, rows}}));
}

TEST(TableTest, theRecorderSaysWhichCountDiffersFromTheDocumentedOne) {
    std::istringstream extensionRows = streamOf(readAllRows(extensions)),
                       entryRows = streamOf(readAllRows(entryPoints));
    const std::vector<EntryPoint> entries = readEntryPoints(entryRows, readExtensions(extensionRows));
    const auto told = [&](void (*change)(std::vector<EntryPoint> & entries)) {
        std::vector<EntryPoint> changed = entries;
        change(changed);
        try {
            checkRekorderSplit(changed);
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    const std::string start = "the recorder has ",
                      end = ": correct the table, or the numbers in generator/EmitRekorder.cpp, "
                            "src/extensionator/OpenGLRekorder.h and docs/recording-format.md";
    EXPECT_EQ("", told([](auto&) {})) << "as it stands";
    EXPECT_EQ(start + "857 functions without pointers instead of 856" + end,
              told([](auto& entries) { entries.emplace_back(); }))
        << "an entry without pointers more";
    EXPECT_EQ(start + "66 functions with a form of their own instead of 67" + end, told([](auto& entries) {
                  std::erase_if(entries, [](auto& entry) { return entry.name == "Uniform3ivARB"; });
              }))
        << "an entry with a form of its own less";
    EXPECT_EQ(start +
                  "857 functions without pointers instead of 856, 909 functions that leave a marker instead "
                  "of 910" +
                  end,
              told([](auto& entries) {
                  std::ranges::find(entries, "Color3fv", &EntryPoint::name)->parameters.front().array = "[3]";
              }))
        << "a pointer that became an array";
}

} // namespace
