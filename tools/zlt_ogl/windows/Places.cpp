// By the debug information that GCC writes into the file itself, in the same way as linux/Places.cpp.

#include "../Places.h"

#include "DwarfReader.h"
#include "PeFile.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace ZLT::Interception {

namespace {

using Dwarf::Die;
using Dwarf::Unit;

std::string demangled(const std::string& name) {
    if (!name.starts_with("_Z"))
        return name; // else "f" would be the type float
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? text.get() : name;
}

bool isAbsolute(std::string_view path) {
    return path.starts_with('/') || path.starts_with('\\') || (path.size() > 1 && path[1] == ':');
}

std::string joined(std::string_view folder, std::string_view path) {
    return folder.empty() || isAbsolute(path) ? std::string(path)
                                              : std::string(folder) + '/' + std::string(path);
}

std::string asGiven(const Dwarf::File& file, const Unit& unit) {
    const auto whole = [&](std::string_view path) {
        std::string text = joined(unit.folder, path);
        std::replace(text.begin(), text.end(), '\\', '/');
        return text;
    };
    const std::string path = joined(file.folder, file.name);
    if (whole(path) == whole(unit.name))
        return std::string(unit.name);
    // A file of the folder that the compiler ran in has lost that folder, if it was given with it.
    return file.folder.empty() && isAbsolute(unit.name) ? joined(unit.folder, path) : path;
}

bool isCallSite(const Die& die) { return die.tag() == Dwarf::callSite || die.tag() == Dwarf::gnuCallSite; }

class Module {
public:
    explicit Module(const std::string& path)
        : file_(path),
          dwarf_({file_.content(".debug_info"), file_.content(".debug_abbrev"), file_.content(".debug_line"),
                  file_.content(".debug_line_str"), file_.content(".debug_str"),
                  file_.content(".debug_ranges"), file_.content(".debug_rnglists")},
                 file_.imageBase()) {}

    // Of the instruction before the return address.
    std::vector<Place> at(std::uint64_t returnAddress) {
        std::vector<Place> places(1);
        const std::uint64_t address = file_.imageBase() + returnAddress - 1;
        if (const Unit* unit = dwarf_.unitAt(address)) {
            places.front() = lineAt(*unit, address);
            addInlined(*unit, address, places);
        }
        if (places.size() == 1 && places.front().function.empty())
            places.front().function = demangled(file_.functionAt(returnAddress - 1));
        return places;
    }

    // The place of a call of `function` in tail position, in what the call that returns to the address
    // called.
    std::optional<Place> inTailOf(std::uint64_t returnAddress, const std::string& function) {
        const std::string called = calledAt(file_.imageBase() + returnAddress);
        if (called.empty() || called == function)
            return {};
        std::vector<Place> found;
        findTailCalls(called, function, 0, found);
        return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
    }

private:
    struct Function {
        Die die;
        std::vector<Dwarf::Range> ranges;
    };
    // What is read of a unit once it is needed.
    struct Contents {
        std::vector<Function> functions;
        std::map<std::uint64_t, Die> callsByReturn;
    };

    std::string textOf(const Die& die, std::initializer_list<unsigned int> names) const {
        for (const unsigned int name : names)
            if (const std::optional<Dwarf::Value> value = dwarf_.value(die, name))
                return std::string(dwarf_.text(*value));
        return "";
    }
    std::optional<std::uint64_t> numberOf(const Die& die, std::initializer_list<unsigned int> names) const {
        for (const unsigned int name : names)
            if (const std::optional<Dwarf::Value> value = dwarf_.ownValue(die, name))
                return value->number;
        return {};
    }
    // What a function is linked as: one name for its declarations and its definition.
    std::string linkNameOf(const Die& die) const {
        return textOf(die, {Dwarf::linkageName, Dwarf::mipsLinkageName, Dwarf::name});
    }
    // The same in the form of DWARF 5 and in that of GCC before it.
    std::optional<std::uint64_t> returnOf(const Die& call) const {
        return numberOf(call, {Dwarf::callReturnPc, Dwarf::lowPc});
    }
    std::string calledBy(const Die& call) const {
        for (const unsigned int name : {Dwarf::callOrigin, Dwarf::abstractOrigin})
            if (const std::optional<Dwarf::Value> value = dwarf_.ownValue(call, name))
                if (const std::optional<Die> called = dwarf_.referred(*value))
                    return linkNameOf(*called);
        return "";
    }
    bool isTailCall(const Die& call) const {
        return dwarf_.ownValue(call, Dwarf::callTailCall) || dwarf_.ownValue(call, Dwarf::gnuTailCall);
    }

    Place lineAt(const Unit& unit, std::uint64_t address) {
        const Dwarf::Line* line = dwarf_.lines(unit).find(address);
        return line ? placeOf(unit, line->file, line->line) : Place();
    }
    Place placeOf(const Unit& unit, std::uint64_t file, std::uint64_t line) {
        const std::vector<Dwarf::File>& files = dwarf_.lines(unit).files;
        if (line == 0 || file >= files.size() || files[file].name.empty())
            return {};
        return {asGiven(files[file], unit), static_cast<unsigned int>(line), ""};
    }

    const Contents& contentsOf(const Unit& unit) {
        const auto [place, isNew] = contents_.try_emplace(&unit);
        Contents& contents = place->second;
        if (isNew)
            dwarf_.visit(unit.root, [&](const Die& die) {
                if (die.tag() == Dwarf::subprogram) {
                    if (Function function = {die, dwarf_.rangesOf(die)}; !function.ranges.empty())
                        contents.functions.push_back(std::move(function));
                } else if (isCallSite(die)) {
                    if (const std::optional<std::uint64_t> after = returnOf(die))
                        contents.callsByReturn.emplace(*after, die);
                }
            });
        return contents;
    }

    // The functions that were inlined: the innermost has the line that was found, each next one the line of
    // the call that was inlined in it.
    void addInlined(const Unit& unit, std::uint64_t address, std::vector<Place>& places) {
        const auto hasAddress = [&](const Dwarf::Range& range) { return range.has(address); };
        const Die* function = nullptr;
        for (const Function& one : contentsOf(unit).functions)
            if (std::ranges::any_of(one.ranges, hasAddress))
                function = &one.die;
        if (!function)
            return;
        std::vector<Die> inlined; // the outermost first
        dwarf_.visit(*function, [&](const Die& die) {
            if (die.tag() == Dwarf::inlinedSubroutine &&
                std::ranges::any_of(dwarf_.rangesOf(die), hasAddress))
                inlined.push_back(die);
        });
        for (; !inlined.empty(); inlined.pop_back()) {
            places.back().function = demangled(linkNameOf(inlined.back()));
            places.push_back(placeOf(unit, numberOf(inlined.back(), {Dwarf::callFile}).value_or(0),
                                     numberOf(inlined.back(), {Dwarf::callLine}).value_or(0)));
        }
        places.back().function = demangled(linkNameOf(*function));
    }

    // What the call that returns to this address called, where the compiler wrote it down.
    std::string calledAt(std::uint64_t address) {
        const Unit* unit = dwarf_.unitAt(address - 1);
        if (!unit)
            return "";
        const std::map<std::uint64_t, Die>& calls = contentsOf(*unit).callsByReturn;
        const auto call = calls.find(address);
        return call == calls.end() ? "" : calledBy(call->second);
    }

    // All calls of `function` by which the function `from` may end, itself or through others.
    void findTailCalls(const std::string& from, const std::string& function, int depth,
                       std::vector<Place>& found) {
        constexpr int deepest = 4;
        if (from.empty() || depth == deepest)
            return;
        const std::optional<Die> definition = definitionOf(from);
        if (!definition)
            return;
        dwarf_.visit(*definition, [&](const Die& die) {
            if (!isCallSite(die) || !isTailCall(die))
                return;
            const std::optional<std::uint64_t> after = returnOf(die);
            const std::string called = calledBy(die);
            if (!after)
                return;
            if (called != function)
                return findTailCalls(called, function, depth + 1, found);
            found.push_back(lineAt(*definition->unit, *after - 1));
            found.back().function = demangled(from);
        });
    }

    // Of the functions that have code, by the names by which they are linked. Read once, where it is needed.
    std::optional<Die> definitionOf(const std::string& name) {
        if (!definitionsAreRead_) {
            definitionsAreRead_ = true;
            for (const Unit& unit : dwarf_.units())
                for (const Function& function : contentsOf(unit).functions)
                    definitions_.try_emplace(linkNameOf(function.die), function.die);
        }
        const auto definition = definitions_.find(name);
        return definition == definitions_.end() ? std::nullopt : std::optional(definition->second);
    }

    PeFile file_;
    Dwarf::Reader dwarf_;
    std::map<const Unit*, Contents> contents_;
    bool definitionsAreRead_ = false;
    std::map<std::string, Die> definitions_;
};

// What is damaged is as if it were not there.
template <class Reading>
auto orNothing(Reading reading) {
    try {
        return reading();
    } catch (const std::exception&) {
        return decltype(reading())();
    }
}

class PlacesInFile final : public PlaceFinder {
public:
    void addModule(const std::string&) override {}
    Place find(const std::string& module, std::uint64_t address, const std::string& function) override {
        if (Module* its = moduleOf(module))
            if (const std::optional<Place> place =
                    orNothing([&] { return its->inTailOf(address, function); }))
                return *place;
        return findAll(module, address).front();
    }

    std::vector<Place> findAll(const std::string& module, std::uint64_t address) override {
        std::vector<Place> places;
        if (Module* its = moduleOf(module))
            places = orNothing([&] { return its->at(address); });
        if (places.empty())
            places.emplace_back();
        if (places.front().file.empty())
            places.front().file = placeWithoutLine(module, address).file;
        return places;
    }

private:
    Module* moduleOf(const std::string& path) {
        const auto [module, isNew] = modules_.try_emplace(path);
        if (isNew && !path.empty())
            module->second = orNothing([&] { return std::make_unique<Module>(path); });
        return module->second.get();
    }
    std::map<std::string, std::unique_ptr<Module>> modules_;
};

} // namespace

PlaceFinder& placeFinder() {
    static PlacesInFile finder;
    return finder;
}

} // namespace ZLT::Interception
