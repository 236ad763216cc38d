// The sources stand on floors: what one includes lies on its own floor or on one below, and no two modules
// need each other.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Names = std::set<std::string>;
using Graph = std::map<std::string, Names>; // from each node to what it needs

// From the ground up, each with the beginnings of the paths on it; the longest that fits decides.
const std::vector<std::vector<std::string>> floors = {
    {"Export.h", "platform/", "zlt/core/"},
    {"platform/linux/records/"},
    {"platform/linux/apis/"},
    {"platform/linux/windows/"},
    {"platform/linux/adoption/"},
    {"platform/linux/calls/"},
    {"ExceptionOGL."},
    {"extensionator/", "ogl/", "InternalWindow."},
    {"LibraryOGL.", "AutoInitializer."},
    {"capture/"},
    {"intercept/"},
    {"intercept/linux/", "intercept/windows/"},
};

// A manager reads its driver on a context, and a context registers with the manager of its device: each needs
// the other by nature, and their headers don't.
const Names knot = {"extensionator/Managers", "ogl/Context", "ogl/internal/ContextBootstrap"};

int floorOf(const std::string& file) {
    int found = -1;
    std::size_t longest = 0;
    for (std::size_t floor = 0; floor < floors.size(); ++floor)
        for (const std::string& beginning : floors[floor])
            if (file.starts_with(beginning) && beginning.size() > longest) {
                found = int(floor);
                longest = beginning.size();
            }
    // A room that nobody gave a floor.
    return file.starts_with("platform/linux/") && longest <= std::string("platform/").size() ? -1 : found;
}

// A header and its source are one module, and so are the parts of a class.
std::string moduleOf(const std::string& file) {
    std::string module = file.substr(0, file.rfind('.'));
    for (const std::string part : {"_WIN_OS", "_sharing"})
        if (module.ends_with(part))
            module.resize(module.size() - part.size());
    return module;
}

// The path between the quotes of an include; "" for another line.
std::string includedBy(std::string line) {
    std::erase_if(line, [](char letter) { return letter == ' ' || letter == '\t'; });
    const std::string start = "#include\"";
    return line.starts_with(start) ? line.substr(start.size(), line.find('"', start.size()) - start.size())
                                   : "";
}

// The files of src/, and what of src/ each includes; what is generated is not among them.
Graph readIncludes() {
    Graph includes;
    for (const auto& entry : fs::recursive_directory_iterator(ZLT_SOURCES))
        if (entry.is_regular_file() && entry.path().filename() != "CMakeLists.txt")
            includes[fs::relative(entry.path(), ZLT_SOURCES).generic_string()];
    for (auto& [file, needed] : includes) {
        std::ifstream text(fs::path(ZLT_SOURCES) / file);
        for (std::string line; std::getline(text, line);)
            if (const std::string path = includedBy(line); includes.contains(path))
                needed.insert(path);
    }
    return includes;
}

void reach(const Graph& graph, const std::string& node, Names& reached) {
    if (const auto found = graph.find(node); found != graph.end())
        for (const std::string& next : found->second)
            if (reached.insert(next).second)
                reach(graph, next, reached);
}

// The groups of nodes of which each reaches each other.
std::set<Names> circles(const Graph& graph) {
    std::map<std::string, Names> reached;
    for (const auto& [node, needed] : graph)
        reach(graph, node, reached[node]);
    std::set<Names> found;
    for (const auto& [node, others] : reached)
        if (others.contains(node)) {
            Names group;
            for (const std::string& other : others)
                if (reached.at(other).contains(node))
                    group.insert(other);
            found.insert(group);
        }
    return found;
}

struct FloorTest : testing::Test {
    const Graph includes = readIncludes();
};

TEST_F(FloorTest, noIncludeRunsUp) {
    std::size_t count = 0;
    for (const auto& [file, needed] : includes) {
        EXPECT_NE(-1, floorOf(file)) << file << " stands on no floor";
        for (const std::string& other : needed)
            EXPECT_LE(floorOf(other), floorOf(file)) << file << " includes " << other;
        count += needed.size();
    }
    // Paths that no longer resolve would pass as nothing.
    EXPECT_GE(count, 300U);
}

TEST_F(FloorTest, noModulesNeedEachOther) {
    Graph modules;
    for (const auto& [file, needed] : includes) {
        Names& all = modules[moduleOf(file)];
        for (const std::string& other : needed)
            if (moduleOf(other) != moduleOf(file))
                all.insert(moduleOf(other));
    }
    EXPECT_THAT(circles(modules), testing::ElementsAre(knot));
}

// The compiler would see one of them half; the knot is no excuse.
TEST_F(FloorTest, noHeadersNeedEachOther) {
    Graph headers = includes;
    std::erase_if(headers, [](const auto& row) { return row.first.ends_with(".cpp"); });
    EXPECT_THAT(circles(headers), testing::IsEmpty());
}

} // namespace
