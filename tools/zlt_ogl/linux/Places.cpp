// By libdw, which knows the formats of debug information, compressed sections, and separate files of it. This
// is a module, which the command loads when it needs a place.

#include "PlacesByDwarf.h"

#include <cxxabi.h>
#include <dwarf.h>
#include <elfutils/libdw.h>
#include <elfutils/libdwfl.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <unordered_map>

namespace ZLT::Interception {

namespace {

namespace fs = std::filesystem;

std::string textOf(const char* text) { return text ? text : ""; }

std::string demangled(const std::string& name) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? text.get() : name;
}

std::optional<Dwarf_Attribute> attributeOf(Dwarf_Die die, unsigned int name) {
    Dwarf_Attribute attribute;
    if (dwarf_attr_integrate(&die, name, &attribute))
        return attribute;
    return {};
}

std::optional<Dwarf_Die> referenceOf(const Dwarf_Die& die, std::initializer_list<unsigned int> names) {
    for (const unsigned int name : names)
        if (std::optional<Dwarf_Attribute> attribute = attributeOf(die, name)) {
            Dwarf_Die referred;
            if (dwarf_formref_die(&*attribute, &referred))
                return referred;
        }
    return {};
}

std::optional<Dwarf_Addr> addressOf(const Dwarf_Die& die, std::initializer_list<unsigned int> names) {
    for (const unsigned int name : names)
        if (std::optional<Dwarf_Attribute> attribute = attributeOf(die, name)) {
            Dwarf_Addr address = 0;
            if (dwarf_formaddr(&*attribute, &address) == 0)
                return address;
        }
    return {};
}

unsigned int numberOf(const Dwarf_Die& die, unsigned int name) {
    Dwarf_Word number = 0;
    if (std::optional<Dwarf_Attribute> attribute = attributeOf(die, name))
        dwarf_formudata(&*attribute, &number);
    return static_cast<unsigned int>(number);
}

// What a function is linked as: one name for its declarations and its definition.
std::string linkNameOf(Dwarf_Die die) {
    for (const unsigned int name : {DW_AT_linkage_name, DW_AT_MIPS_linkage_name, DW_AT_name})
        if (std::optional<Dwarf_Attribute> attribute = attributeOf(die, name))
            return textOf(dwarf_formstring(&*attribute));
    return "";
}

std::string nameOf(const Dwarf_Die& die) { return demangled(linkNameOf(die)); }

// Visits what lies in a DIE, at any depth, until the visitor says true.
bool visit(Dwarf_Die parent, const std::function<bool(const Dwarf_Die&)>& visitor) {
    Dwarf_Die child;
    if (dwarf_child(&parent, &child) != 0)
        return false;
    do {
        if (visitor(child) || visit(child, visitor))
            return true;
    } while (dwarf_siblingof(&child, &child) == 0);
    return false;
}

bool isCallSite(Dwarf_Die die) {
    const int tag = dwarf_tag(&die);
    return tag == DW_TAG_call_site || tag == DW_TAG_GNU_call_site;
}

// The same in the form of DWARF 5 and in that of GCC before it.
std::optional<Dwarf_Addr> returnOf(const Dwarf_Die& callSite) {
    return addressOf(callSite, {DW_AT_call_return_pc, DW_AT_low_pc});
}
std::optional<Dwarf_Die> calledOf(const Dwarf_Die& callSite) {
    return referenceOf(callSite, {DW_AT_call_origin, DW_AT_abstract_origin});
}
bool isTailCall(Dwarf_Die callSite) {
    return dwarf_hasattr(&callSite, DW_AT_call_tail_call) || dwarf_hasattr(&callSite, DW_AT_GNU_tail_call);
}

class Module {
public:
    explicit Module(const std::string& path) {
        static char* noPath = nullptr;
        static const Dwfl_Callbacks callbacks = {dwfl_build_id_find_elf, dwfl_standard_find_debuginfo,
                                                 dwfl_offline_section_address, &noPath};
        dwfl_ = dwfl_begin(&callbacks);
        if (!dwfl_)
            return;
        module_ = dwfl_report_elf(dwfl_, path.c_str(), path.c_str(), -1, 0x10000, false);
        dwfl_report_end(dwfl_, nullptr, nullptr);
        if (!module_)
            return;
        GElf_Addr bias = 0;
        if (dwfl_module_getelf(module_, &bias))
            bias_ = bias;
    }
    ~Module() { dwfl_end(dwfl_); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Of the instruction before the return address.
    std::vector<Place> at(std::uint64_t returnAddress) {
        if (!module_)
            return {};
        const Dwarf_Addr address = returnAddress - 1 + bias_;
        Place place = lineAt(address);
        place.function = demangled(textOf(dwfl_module_addrname(module_, address)));
        std::vector<Place> places = {place};
        addInlined(address, places);
        return places;
    }

    // The place of a call of `function` in tail position, in what the call that returns to the address
    // called.
    std::optional<Place> inTailOf(std::uint64_t returnAddress, const std::string& function) {
        if (!module_)
            return {};
        const std::string called = calledAt(returnAddress);
        if (called.empty() || called == function)
            return {};
        std::vector<Place> found;
        findTailCalls(called, function, 0, found);
        return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
    }

private:
    Place lineAt(Dwarf_Addr address) {
        Place place;
        Dwfl_Line* line = dwfl_module_getsrc(module_, address);
        int number = 0;
        const char* file = line ? dwfl_lineinfo(line, nullptr, &number, nullptr, nullptr, nullptr) : nullptr;
        if (!file || number <= 0)
            return place;
        Dwarf_Die* unit = dwfl_linecu(line);
        place.file = asGiven(file, textOf(dwfl_line_comp_dir(line)), unit ? textOf(dwarf_diename(unit)) : "");
        place.line = static_cast<unsigned int>(number);
        return place;
    }

    // The debug information has paths made absolute.
    static std::string asGiven(const std::string& file, const std::string& folder, const std::string& unit) {
        if (!unit.empty() &&
            (fs::path(folder) / unit).lexically_normal() == fs::path(file).lexically_normal())
            return unit;
        const bool relative = !fs::path(unit).is_absolute();
        if (relative && !folder.empty() && file.starts_with(folder + '/'))
            return file.substr(folder.size() + 1);
        return file;
    }

    Dwarf_Die* unitAt(Dwarf_Addr address, Dwarf_Addr& bias) {
        return dwfl_module_addrdie(module_, address, &bias);
    }

    // The functions that were inlined: the innermost has the line that was found, each next one the line of
    // the call that was inlined in it.
    void addInlined(Dwarf_Addr address, std::vector<Place>& places) {
        Dwarf_Addr bias = 0;
        Dwarf_Die* unit = unitAt(address, bias);
        if (!unit)
            return;
        Dwarf_Die* scopes = nullptr;
        const int count = dwarf_getscopes(unit, address - bias, &scopes);
        const std::unique_ptr<Dwarf_Die, decltype(&std::free)> owner(scopes, &std::free);
        Dwarf_Files* files = nullptr;
        std::size_t fileCount = 0;
        if (dwarf_getsrcfiles(unit, &files, &fileCount) != 0)
            return;
        for (int i = 0; i < count; ++i) {
            Dwarf_Die& scope = scopes[i];
            const int tag = dwarf_tag(&scope);
            if (tag == DW_TAG_subprogram) {
                if (const std::string name = nameOf(scope); !name.empty())
                    places.back().function = name;
                return;
            }
            if (tag != DW_TAG_inlined_subroutine)
                continue;
            places.back().function = nameOf(scope);
            Place caller;
            const unsigned int file = numberOf(scope, DW_AT_call_file);
            caller.line = numberOf(scope, DW_AT_call_line);
            if (file < fileCount && caller.line > 0) {
                std::optional<Dwarf_Attribute> folder = attributeOf(*unit, DW_AT_comp_dir);
                caller.file =
                    asGiven(textOf(dwarf_filesrc(files, file, nullptr, nullptr)),
                            folder ? textOf(dwarf_formstring(&*folder)) : "", textOf(dwarf_diename(unit)));
            }
            places.push_back(caller);
        }
    }

    // What the call that returns to this address called, where the compiler wrote it down. A unit is read
    // once.
    std::string calledAt(std::uint64_t returnAddress) {
        const Dwarf_Addr address = returnAddress + bias_;
        Dwarf_Addr bias = 0;
        Dwarf_Die* unit = unitAt(address - 1, bias);
        if (!unit)
            return "";
        const auto [calls, isNew] = calledByReturn_.try_emplace(dwarf_dieoffset(unit));
        if (isNew)
            visit(*unit, [&](const Dwarf_Die& die) {
                if (isCallSite(die))
                    if (const std::optional<Dwarf_Die> called = calledOf(die))
                        if (const std::optional<Dwarf_Addr> after = returnOf(die))
                            calls->second.emplace(*after, linkNameOf(*called));
                return false;
            });
        const auto found = calls->second.find(address - bias);
        return found == calls->second.end() ? "" : found->second;
    }

    // All calls of `function` by which the function `from` may end, itself or through others.
    void findTailCalls(const std::string& from, const std::string& function, int depth,
                       std::vector<Place>& found) {
        constexpr int deepest = 4;
        if (from.empty() || depth == deepest)
            return;
        Dwarf_Addr bias = 0;
        const std::optional<Dwarf_Die> definition = definitionOf(from, bias);
        if (!definition)
            return;
        visit(*definition, [&](const Dwarf_Die& die) {
            if (!isCallSite(die) || !isTailCall(die))
                return false;
            const std::optional<Dwarf_Die> called = calledOf(die);
            const std::optional<Dwarf_Addr> after = returnOf(die);
            if (!called || !after)
                return false;
            if (linkNameOf(*called) == function)
                found.push_back(withFunction(lineAt(*after + bias - 1), demangled(from)));
            else
                findTailCalls(linkNameOf(*called), function, depth + 1, found);
            return false;
        });
    }
    static Place withFunction(Place place, const std::string& function) {
        place.function = function;
        return place;
    }

    // The functions that have code, by the names by which they are linked. Read once, where it is needed.
    std::optional<Dwarf_Die> definitionOf(const std::string& name, Dwarf_Addr& bias) {
        if (!definitionsAreRead_) {
            definitionsAreRead_ = true;
            Dwarf_Die* unit = nullptr;
            while ((unit = dwfl_module_nextcu(module_, unit, &definitionBias_)))
                visit(*unit, [&](Dwarf_Die die) {
                    Dwarf_Addr low = 0;
                    if (dwarf_tag(&die) == DW_TAG_subprogram && dwarf_lowpc(&die, &low) == 0)
                        definitions_.try_emplace(linkNameOf(die), die);
                    return false;
                });
        }
        bias = definitionBias_;
        const auto definition = definitions_.find(name);
        return definition == definitions_.end() ? std::nullopt : std::optional(definition->second);
    }

    Dwfl* dwfl_ = nullptr;
    Dwfl_Module* module_ = nullptr;
    Dwarf_Addr bias_ = 0;
    bool definitionsAreRead_ = false;
    Dwarf_Addr definitionBias_ = 0;
    std::map<std::string, Dwarf_Die> definitions_;
    std::map<Dwarf_Off, std::unordered_map<Dwarf_Addr, std::string>> calledByReturn_;
};

class PlacesByDwarf final : public PlaceFinder {
public:
    PlacesByDwarf() {
        // A server of debug information may keep the program waiting for minutes.
        unsetenv("DEBUGINFOD_URLS");
    }

    Place find(const std::string& module, std::uint64_t address, const std::string& function) override {
        if (!module.empty())
            if (const std::optional<Place> place = moduleOf(module).inTailOf(address, function))
                return *place;
        return findAll(module, address).front();
    }

    std::vector<Place> findAll(const std::string& module, std::uint64_t address) override {
        std::vector<Place> places;
        if (!module.empty())
            places = moduleOf(module).at(address);
        if (places.empty())
            places.emplace_back();
        if (places.front().file.empty())
            places.front().file = placeWithoutLine(module, address).file;
        return places;
    }

private:
    Module& moduleOf(const std::string& path) { return modules_.try_emplace(path, path).first->second; }
    std::map<std::string, Module> modules_;
};

} // namespace

} // namespace ZLT::Interception

ZLT::Interception::PlaceFinder* zlt_make_place_finder() {
    static ZLT::Interception::PlacesByDwarf finder;
    return &finder;
}
