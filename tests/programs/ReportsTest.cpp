// Reports about captures: what they say is what is in the captures, and a browser shows it.

#include "Captures.h"

#include <nlohmann/json.hpp>

#include <map>
#include <set>

namespace {

using Json = nlohmann::json;

Json dataOf(const std::string& page) {
    const std::string text = contentOf(page), begin = "<script type=\"application/json\" id=\"report\">";
    const std::size_t from = text.find(begin);
    if (from == std::string::npos)
        return {};
    const std::size_t start = from + begin.size();
    return Json::parse(text.substr(start, text.find("</script>", start) - start));
}

// The rows of a table, by their columns.
std::vector<Json> rowsOf(const Json& table) {
    std::vector<Json> rows;
    for (const Json& row : table["rows"]) {
        Json named;
        for (std::size_t i = 0; i < row.size(); ++i)
            named[table["columns"][i].get<std::string>()] = row[i];
        rows.push_back(named);
    }
    return rows;
}

// What another command says of the same capture.
struct Dumped {
    std::size_t calls = 0, frames = 0;
    std::map<std::string, std::size_t> functions;
    std::string wrongSite; // of the call that is wrong on purpose
};

Dumped dumpOf(const std::string& file) {
    Dumped dumped;
    for (const std::string& line : linesOf(run({COMMAND, "dump", "--json", file}, 60s).out)) {
        const Json record = Json::parse(line);
        if (record.contains("function")) {
            ++dumped.calls;
            ++dumped.functions[record["function"]];
            if (record["function"] == "glEnable" && record["arguments"]["cap"] == "0xdead")
                dumped.wrongSite = record["site"];
        } else if (record["event"] == "Swap") {
            ++dumped.frames;
        }
    }
    return dumped;
}

std::string siteOf(const std::string& source, const std::string& text, std::size_t skip = 0) {
    const std::vector<std::string> lines = linesOf(contentOf(SOURCES + source));
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].find(text) != std::string::npos && skip-- == 0)
            return source + ':' + std::to_string(i + 1);
    return "";
}

// A report about a program, that a browser shows as a user would look at it.
class ReportsTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        const std::string file = scratch("reported.zlt");
        const Result captured = run(capture(file) + Words{FOLDER "scenes", "reported"});
        isSkipped = captured.status == 77;
        made =
            run({COMMAND, "report", file, "-o", scratch("reported.html"), "--chrome", scratch("trace.json")},
                60s);
        if (!isSkipped && made.status == 0)
            data = dataOf(scratch("reported.html"));
        dumped = dumpOf(file);
    }
    void SetUp() override {
        if (isSkipped)
            GTEST_SKIP() << "no driver: no window";
        ASSERT_EQ(0, made.status) << made.err;
        ASSERT_FALSE(data.is_null());
    }

    // As debug information has it, the path is as the compiler was given it.
    static std::string site(const Json& row) { return fileOf(data["sites"][row["site"].get<std::size_t>()]); }
    static std::string function(const Json& row) {
        return data["functions"][row["function"].get<std::size_t>()];
    }

    static bool isSkipped;
    static Result made;
    static Json data;
    static Dumped dumped;
};
bool ReportsTest::isSkipped = false;
Result ReportsTest::made;
Json ReportsTest::data;
Dumped ReportsTest::dumped;

TEST_F(ReportsTest, countsAreThoseOfDump) {
    EXPECT_EQ(dumped.calls, data["overview"]["calls"]);
    EXPECT_EQ(dumped.frames, data["overview"]["frames"]);
    std::map<std::string, std::size_t> functions;
    for (const auto& [frame, details] : data["frames"]["details"].items())
        for (const Json& row : rowsOf(details["functions"]))
            functions[function(row)] += row["count"].get<std::size_t>();
    EXPECT_EQ(dumped.functions, functions);
    // But for the one that is shown at first, a frame draws from a buffer, in immediate mode, and by a list
    // in a list.
    for (const auto& [member, number] : {std::pair("draws", 3), {"vertices", 4 + 600 + 4}})
        for (std::size_t i = 1; i < dumped.frames; ++i)
            EXPECT_EQ(number, data["frames"][member][i]) << member << " of frame " << i + 1;
    std::uint64_t last = 0;
    for (const Json& time : data["frames"]["start"]) {
        if (time.is_null())
            continue; // after the last swap
        EXPECT_GE(time.get<std::uint64_t>(), last);
        last = time;
    }
    EXPECT_GT(last, 0) << "frames begin one after the other";
}

TEST_F(ReportsTest, errorsHaveTheirLine) {
    const std::vector<Json> errors = rowsOf(data["errors"]);
    ASSERT_EQ(1, errors.size()) << data["errors"];
    EXPECT_EQ(siteOf("sceneReported.cpp", "glEnable(0xDEAD)"), site(errors[0]));
    EXPECT_EQ("glEnable(0xdead)", errors[0]["call"]);
    EXPECT_EQ("GL_INVALID_ENUM", errors[0]["error"]);
    EXPECT_EQ(4, errors[0]["count"]);
    EXPECT_EQ("Light", errors[0]["groups"]);
    EXPECT_NE(std::string::npos, errors[0]["message"].get<std::string>().find("0xdead"));
}

TEST_F(ReportsTest, costsHaveTheirLines) {
    std::set<std::string> unchanged, stalls, habits;
    for (const Json& row : rowsOf(data["unchanged"]))
        unchanged.insert(site(row) + ' ' + std::to_string(row["count"].get<int>()));
    EXPECT_TRUE(unchanged.contains(
        siteOf("sceneReported.cpp", "glBindTexture(GL_TEXTURE_2D, kept); // changes") + " 4"));
    EXPECT_TRUE(unchanged.contains(siteOf("sceneReported.cpp", "glEnable(GL_BLEND); // changes") + " 4"));
    EXPECT_FALSE(unchanged.contains(siteOf("sceneReported.cpp", "glDisable(GL_BLEND)") + " 4"));
    for (const Json& row : rowsOf(data["stalls"]))
        stalls.insert(function(row));
    EXPECT_TRUE(stalls.contains("glFinish"));
    EXPECT_TRUE(stalls.contains("glReadPixels"));
    for (const Json& row : rowsOf(data["habits"]))
        habits.insert(row["title"]);
    for (const char* habit :
         {"Immediate mode", "The same data is sent again", "Locations are looked up again",
          "Textures are made anew instead of written to"})
        EXPECT_TRUE(habits.contains(habit)) << habit;
}

TEST_F(ReportsTest, objectsAreThereWithTheirPicturesAndLogs) {
    std::vector<Json> textures;
    for (const Json& row : rowsOf(data["textures"]))
        textures.push_back(row);
    ASSERT_EQ(2, textures.size());
    for (const Json& texture : textures) {
        EXPECT_EQ(64, texture["width"]);
        EXPECT_EQ(32, texture["height"]);
        EXPECT_EQ("GL_RGBA8", texture["format"]);
        EXPECT_EQ(64 * 32 * 4, texture["bytes"]);
        EXPECT_TRUE(texture["picture"].is_string()) << texture["note"];
    }
    EXPECT_EQ("</script><script>document.title='owned'</script>", textures[0]["label"]);
    EXPECT_TRUE(textures[0]["deleted"].is_null());
    EXPECT_EQ(5, textures[1]["deleted"]) << "in the last frame, behind one of the toolkit";
    EXPECT_EQ("corners", rowsOf(data["buffers"])[0]["label"]);
    const Json program = rowsOf(data["programs"])[0];
    EXPECT_EQ(true, program["linked"]);
    ASSERT_EQ(2, program["shaders"].size());
    EXPECT_NE(
        std::string::npos,
        rowsOf(data["shaders"])[program["shaders"][1]]["source"].get<std::string>().find("texture2D(image"));
    std::set<std::string> leaks;
    for (const Json& row : rowsOf(data["leaks"]))
        leaks.insert(row["kind"].get<std::string>() + ' ' + site(row));
    EXPECT_TRUE(leaks.contains("texture " + siteOf("sceneReported.cpp", "glGenTextures(1, &kept)")));
    EXPECT_FALSE(leaks.contains("texture " + siteOf("sceneReported.cpp", "glGenTextures(1, &gone)")));
}

TEST_F(ReportsTest, groupsAreInPageAndTrace) {
    std::map<std::string, Json> groups;
    for (const Json& row : rowsOf(data["groups"]))
        groups[row["group"]] = row;
    ASSERT_EQ(3, groups.size());
    EXPECT_EQ(4, groups["Shadows"]["count"]);
    const std::string inner = "Light / Trees <img src=x onerror=document.title='owned'>";
    EXPECT_GT(groups["Light"]["calls"], groups[inner]["calls"]);
    const Json trace = Json::parse(contentOf(scratch("trace.json")));
    std::map<int, std::set<std::string>> names;
    for (const Json& event : trace["traceEvents"])
        if (event["ph"] == "X") {
            names[event["pid"]].insert(event["name"]);
            EXPECT_GE(event["dur"].get<double>(), 0);
        }
    for (const int process : {1, 2, 3}) // program, replay, graphics processor
        EXPECT_TRUE(names[process].contains("frame 1")) << process;
    EXPECT_TRUE(names[2].contains("Shadows"));
    EXPECT_TRUE(names[3].contains("Shadows"));
}

// Who looks at a page in a browser is a program beside this one.
Result look(const std::string& page, const Dumped& dumped, const Json& errors, const Words& options = {}) {
    const std::string expected = scratch("expected.json");
    std::ofstream(expected) << Json{{"frames", dumped.frames},
                                    {"calls", dumped.calls},
                                    {"errors", errors},
                                    {"functions", dumped.functions}};
    return run(Words{SOURCES "report_test.py", page, "--expect", expected} + options, 120s);
}

TEST_F(ReportsTest, aBrowserShowsIt) {
    const Json errors = {{dumped.wrongSite, "GL_INVALID_ENUM", 4}};
    const Result looked = look(scratch("reported.html"), dumped, errors, {"--hostile"});
    EXPECT_EQ(0, looked.status) << looked.out << looked.err;
}

TEST(ForeignReportsTest, aBrowserShowsThem) {
    for (const char* name : {"/usr/bin/glxgears", "gflux"}) {
        const Words program = wordsOf(name);
        if (access(program[0].c_str(), X_OK) != 0)
            continue; // it is not installed
        const std::string file = scratch("foreign.zlt"), page = scratch("foreign.html");
        run(capture(file, {"--frames", "20"}) + program, 40s);
        const Result reported = run({COMMAND, "report", file, "-o", page}, 60s);
        ASSERT_EQ(0, reported.status) << name << reported.err;
        const Result looked =
            look(page, dumpOf(file), Json::array(),
                 {"-k", "testShowsTheNumbers", "-k", "testFits", "-k", "testShowsTheFrame"});
        EXPECT_EQ(0, looked.status) << name << looked.out << looked.err;
    }
}

TEST(ReportDamageTest, isSaid) {
    const std::string file = scratch("cut.zlt"), page = scratch("cut.html");
    run(capture(file) + Words{FOLDER "scenes", "shaders"});
    const std::string whole = contentOf(file);
    std::ofstream(file, std::ios::binary) << whole.substr(0, whole.size() / 2);
    const Result cut = run({COMMAND, "report", file, "-o", page}, 60s);
    EXPECT_EQ(1, cut.status);
    EXPECT_FALSE(dataOf(page)["leftOut"].empty());
    const std::string nowhere = scratch("no/such/page.html");
    const Result refused = run({COMMAND, "report", file, "-o", nowhere}, 60s);
    EXPECT_EQ(2, refused.status);
    EXPECT_NE(std::string::npos, refused.err.find(nowhere + " can't be written")) << refused.err;
    EXPECT_NE(std::string::npos, refused.err.find("No such file or directory")) << refused.err;
    EXPECT_NE(0, run({COMMAND, "report", SOURCES "scenes.cpp", "-o", page}, 60s).status);
}

// What was there stays as it was, and nothing new is left.
TEST(ReportDamageTest, aReportThatFailsChangesNoFile) {
    const std::string file = scratch("kept.zlt"), page = scratch("kept.html"), other = scratch("new.html"),
                      nowhere = scratch("no/such/trace.json");
    run(capture(file) + Words{FOLDER "scenes", "shaders"});
    const std::string whole = contentOf(file);
    std::ofstream(page) << "an older page";
    std::filesystem::remove(other);
    for (const std::string& name : {page, other})
        EXPECT_EQ(2, run({COMMAND, "report", file, "-o", name, "--chrome", nowhere}, 60s).status);
    EXPECT_EQ(1, run({"env", "__EGL_VENDOR_LIBRARY_FILENAMES=/dev/null", "LIBGL_DRIVERS_PATH=/nowhere",
                      "DISPLAY=", COMMAND, "report", file, "-o", page},
                     60s)
                     .status);
    EXPECT_EQ("an older page", contentOf(page));
    EXPECT_FALSE(std::filesystem::exists(other));
    for (const Words& words :
         {Words{"-o", file}, Words{"-o", other, "--chrome", file}, Words{"-o", page, "--chrome", page}})
        EXPECT_EQ(2, run(Words{COMMAND, "report", file} + words, 60s).status);
    EXPECT_TRUE(contentOf(file) == whole);
    EXPECT_EQ("an older page", contentOf(page));
    EXPECT_EQ(0, run({COMMAND, "report", file, "-o", page}, 60s).status);
    EXPECT_TRUE(contentOf(page).starts_with("<!doctype html>"));
}

} // namespace
