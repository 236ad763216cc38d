// The table of arguments beside the public registry, where its package is installed.

#include "generator/Table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

using namespace generator;

namespace {

struct RegistryArgument {
    std::string length;
    bool isConst = false;
};
using Registry = std::map<std::string, std::vector<RegistryArgument>>;

Registry readRegistry(const std::string& xml) {
    Registry registry;
    static const std::regex command("<proto[^>]*>.*?<name>gl(\\w+)</name>"),
        parameter("<param([^>]*)>(.*)</param>"), length("len=\"([^\"]*)\"");
    std::vector<RegistryArgument>* arguments = nullptr;
    std::istringstream lines(xml);
    std::smatch found;
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_search(line, found, command)) {
            arguments = &registry[found[1]];
        } else if (arguments && std::regex_search(line, found, parameter)) {
            const std::string attributes = found[1], text = found[2];
            std::smatch size;
            arguments->push_back({std::regex_search(attributes, size, length) ? size[1].str() : "",
                                  text.find("const") != std::string::npos});
        }
    }
    return registry;
}

// Where the registry is wrong: what a driver reads or writes there is another thing.
const std::set<std::string> corrected = {"CullParameterdvEXT",
                                         "CullParameterfvEXT",
                                         "GetProgramNamedParameterdvNV",
                                         "GetProgramNamedParameterfvNV",
                                         "GetProgramivNV",
                                         "ProgramNamedParameter4dNV",
                                         "ProgramNamedParameter4dvNV",
                                         "ProgramNamedParameter4fNV",
                                         "ProgramNamedParameter4fvNV",
                                         "VertexAttribs2hvNV",
                                         "VertexAttribs3hvNV",
                                         "VertexAttribs4hvNV"};

TEST(RegistryTest, hasTheLengthsAndDirectionsOfTheTable) {
    std::ifstream file("/usr/share/khronos-api/gl.xml");
    if (!file)
        GTEST_SKIP() << "the package khronos-api is not installed";
    std::ostringstream xml;
    xml << file.rdbuf();
    const Registry registry = readRegistry(xml.str());
    std::ifstream extensionRows(ZLT_TABLES "/extensions.tsv"), entryRows(ZLT_TABLES "/gl_entry_points.tsv"),
        argumentRows(ZLT_TABLES "/gl_arguments.tsv");
    const std::vector<EntryPoint> entries = readEntryPoints(entryRows, readExtensions(extensionRows));
    const std::vector<Arguments> arguments = readArguments(argumentRows, entries);
    int compared = 0;
    for (const EntryPoint& entry : entries) {
        const auto known = registry.find(entry.name);
        if (known == registry.end() || corrected.contains(entry.name))
            continue;
        ASSERT_EQ(entry.parameters.size(), known->second.size()) << entry.name;
        for (std::size_t i = 0; i < entry.parameters.size(); ++i) {
            const Argument& ours = arguments[entry.slot][i];
            const RegistryArgument& theirs = known->second[i];
            if ((ours.pointer != "in" && ours.pointer != "out") || theirs.length.empty() ||
                theirs.length.find_first_of("(,") != std::string::npos)
                continue;
            ++compared;
            EXPECT_EQ(theirs.isConst, ours.pointer == "in") << entry.name << ' ' << entry.parameters[i].name;
            std::string length = std::regex_replace(theirs.length, std::regex("\\*"), " * ");
            length = std::regex_replace(length, std::regex(" \\* 1$"), "");
            // A function of it, or of the parameter's name, says more.
            const bool isMore =
                ours.length.find(length) != std::string::npos || ours.length == "values(pname)";
            EXPECT_TRUE(isMore) << entry.name << ' ' << entry.parameters[i].name << ": " << length << ", not "
                                << ours.length;
        }
    }
    EXPECT_LT(600, compared);
}

TEST(RegistryTest, noPointerIsWithoutMeaning) {
    std::ifstream extensionRows(ZLT_TABLES "/extensions.tsv"), entryRows(ZLT_TABLES "/gl_entry_points.tsv"),
        argumentRows(ZLT_TABLES "/gl_arguments.tsv");
    const std::vector<EntryPoint> entries = readEntryPoints(entryRows, readExtensions(extensionRows));
    std::ostringstream table;
    table << argumentRows.rdbuf();
    const auto failureOf = [&](const std::string& from, const std::string& to) {
        std::string text = table.str();
        text.replace(text.find(from), from.size(), to);
        std::istringstream in(text);
        try {
            readArguments(in, entries);
        } catch (const TableError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_NE(
        std::string::npos,
        failureOf("Color3bv\t0\tv\tin\t3\tColorB\t\n", "").find("a meaning for Color3bv's v is missing"));
    EXPECT_NE(std::string::npos, failureOf("lists(n, type)", "lists(n, kind)").find("kind in the length"));
    EXPECT_NE(std::string::npos, failureOf("lists(n, type)", "list(n, type)").find("list in the length"));
    EXPECT_NE(std::string::npos,
              failureOf("Color3bv\t0\tv\tin", "Color3bv\t0\tv\tto").find("unknown pointer 'to'"));
    EXPECT_NE(std::string::npos, failureOf("\tdisplay list\n", "\tlist\n").find("unknown object 'list'"));
}

} // namespace
