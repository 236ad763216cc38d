#include "capture/Functions.h"

#include "capture/Bytes.h"
#include "extensionator/OpenGLCall.h"

#include <map>

namespace ZLT::Capture {

namespace {

struct EntryRow {
    const char* form;
    const char* names;
    const char* objects;
    const char* lengths;
    const char* group;
};
#include "capture/CapturedEntries.inl"

struct EventRow {
    const char* name;
    const char* form;
    const char* names;
};
// In the order of Event.
constexpr EventRow eventRows[] = {
    {"Function", "uww", "number|name|form|"},
    {"Site", "uwu", "number|file|line|"},
    {"Thread", "u", "thread|"},
    {"Context", "uuiiiw", "context|group|version|profile|flags|driver|"},
    {"Surface", "uiiiiiiiiiiiii",
     "surface|width|height|red|green|blue|alpha|depth|stencil|accumulation|samples|doubleBuffered|stereo|"
     "srgb|"},
    {"Current", "uuu", "context|draw|read|"},
    {"Size", "uii", "surface|width|height|"},
    {"Destroyed", "u", "context|"},
    {"Picture", "uL", "surface|hash|"},
    {"Swap", "u", "surface|"},
    {"Array", "uuieiuLpv", "array|index|size|type|stride|flags|first|data|"},
    {"Written", "LLpv", "address|offset|data|"},
    {"Returned", "epv", "mode|data|"},
    {"Linked", "uuw", "program|count|places|"},
    {"Incomplete", "w", "what|"},
    {"End", "", ""},
    {"Time", "L", "time|"},
    {"Group", "w", "name|"},
    {"GroupEnd", "", ""},
    {"Label", "euw", "kind|name|label|"},
    {"Marker", "w", "text|"},
};
static_assert(std::size(eventRows) == eventCount);

constexpr std::string_view valueForms = "euisScClLbfdytxnaw";
constexpr std::string_view elementForms = "euisScClLbfdyvha";

// Takes the next part of "name|name|".
std::string_view nextPart(std::string_view& parts) {
    const std::size_t end = std::min(parts.find('|'), parts.size());
    const std::string_view part = parts.substr(0, end);
    parts.remove_prefix(std::min(end + 1, parts.size()));
    return part;
}

Function makeFunction(std::string name, const char* form, std::string_view names, std::string_view objects,
                      std::string_view lengths) {
    Function function = readForm(std::move(name), form);
    for (Parameter& parameter : function.parameters) {
        parameter.name = nextPart(names);
        parameter.object = nextPart(objects);
        parameter.length = nextPart(lengths);
    }
    function.result.object = nextPart(objects);
    return function;
}

struct AllFunctions {
    std::vector<Function> byNumber = std::vector<Function>(firstEntry + std::size(entryRows));
    std::map<std::string_view, const Function*> byName;

    AllFunctions() {
        for (std::uint32_t i = 0; i < byNumber.size(); ++i) {
            if (i < eventCount)
                byNumber[i] = makeFunction(eventRows[i].name, eventRows[i].form, eventRows[i].names, "", "");
            else if (i >= firstEntry)
                byNumber[i] =
                    makeFunction(OGL::openGLEntryName(i - firstEntry), entryRows[i - firstEntry].form,
                                 entryRows[i - firstEntry].names, entryRows[i - firstEntry].objects,
                                 entryRows[i - firstEntry].lengths);
            byNumber[i].number = i;
            if (i >= firstEntry)
                byNumber[i].group = entryRows[i - firstEntry].group;
            if (!byNumber[i].name.empty())
                byName.emplace(byNumber[i].name, &byNumber[i]);
        }
    }
};
const AllFunctions& allFunctions() {
    static const AllFunctions all;
    return all;
}

} // namespace

FormatError::~FormatError() = default;

Function readForm(std::string name, std::string form) {
    Function function;
    function.name = std::move(name);
    function.form = std::move(form);
    const std::string& letters = function.form;
    const auto fail = [&] {
        throw FormatError("the function " + function.name + " has the form '" + letters +
                          "', which means nothing");
    };
    for (std::size_t i = 0; i < letters.size(); ++i) {
        Parameter parameter;
        const bool isResult = letters[i] == '>';
        if (isResult && i + 2 != letters.size())
            fail();
        parameter.form = letters[isResult ? ++i : i];
        if (parameter.form == 'p' || parameter.form == 'o') {
            if (isResult || ++i == letters.size() || elementForms.find(letters[i]) == std::string_view::npos)
                fail();
            parameter.element = letters[i];
        } else if (valueForms.find(parameter.form) == std::string_view::npos) {
            fail();
        }
        if (isResult)
            function.result = parameter;
        else
            function.parameters.push_back(parameter);
    }
    return function;
}

std::size_t sizeOfForm(char form) {
    switch (form) {
    case 'c':
    case 'C':
    case 'b':
    case 'v':
        return 1;
    case 's':
    case 'S':
    case 'h':
        return 2;
    case 'l':
    case 'L':
    case 'd':
    case 'a':
    case 'y':
        return 8;
    default:
        return 4;
    }
}

bool isReadBack(const Function& function, const Parameter& parameter) {
    return parameter.length == "packed" || function.name.find("BufferSubData") != std::string::npos;
}

const Function* functionOf(std::uint32_t number) {
    const std::vector<Function>& all = allFunctions().byNumber;
    return number < all.size() && !all[number].name.empty() ? &all[number] : nullptr;
}

const Function* functionNamed(std::string_view name) {
    const auto found = allFunctions().byName.find(name);
    return found == allFunctions().byName.end() ? nullptr : found->second;
}

} // namespace ZLT::Capture
