// By libdw, which knows the formats of debug information, compressed sections, and separate files of it. This
// is a module, which the command loads when it needs a place.

#include "PlacesByDwarf.h"

#include <cxxabi.h>
#include <dwarf.h>
#include <elfutils/libdw.h>
#include <elfutils/libdwfl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>

namespace ZLT::Interception {

namespace {

namespace fs = std::filesystem;

std::string textOf(const char* text) { return text ? text : ""; }

std::string demangled(const std::string& name) {
    if (!name.starts_with("_Z"))
        return name; // a function of C, of which the name may be that of a type: "f" is a float
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

class Module;

// A function as a call site names it: by what it is linked as, and by where it is described. Nothing of both
// where the compiler wrote down nothing.
struct Callee {
    std::string name;
    std::optional<Dwarf_Die> die;
    Dwarf_Addr bias = 0;
    Module* module = nullptr;
};

// A call by which a function ends.
struct TailCall {
    Place place;
    Callee called;
};

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
        if (module_)
            dwfl_module_getelf(module_, &bias_);
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

    // What the call that returns to this address called. A unit is read once.
    Callee calledAt(std::uint64_t returnAddress) {
        const Dwarf_Addr address = returnAddress + bias_;
        Dwarf_Addr bias = 0;
        Dwarf_Die* unit = module_ ? unitAt(address - 1, bias) : nullptr;
        if (!unit)
            return {};
        const auto place = calledByReturn_.try_emplace(dwarf_dieoffset(unit));
        auto& calls = place.first->second;
        if (place.second)
            visit(*unit, [&](const Dwarf_Die& die) {
                if (isCallSite(die))
                    if (const std::optional<Dwarf_Addr> after = returnOf(die))
                        calls.emplace(*after, calleeOf(die, bias));
                return false;
            });
        const auto found = calls.find(address - bias);
        return found == calls.end() ? Callee() : found->second;
    }

    // The calls by which the function that is linked by this name ends; none where it isn't of this module.
    std::vector<TailCall> tailCallsOf(const std::string& function) {
        std::vector<TailCall> found;
        const auto [first, last] = symbols().equal_range(function);
        for (auto symbol = first; symbol != last; ++symbol) {
            Dwarf_Addr bias = 0;
            Dwarf_Die* unit = unitAt(symbol->second, bias);
            if (unit)
                addTailCallsOf(*unit, bias, demangled(function), found,
                               [&](Dwarf_Die&, Dwarf_Addr low) { return low == symbol->second - bias; });
        }
        return found;
    }

    // The same for a function that is described by itself or as what others are made from: one that is not
    // linked.
    std::vector<TailCall> tailCallsOf(const Callee& callee) {
        std::vector<TailCall> found;
        Dwarf_Die die = *callee.die, unit;
        if (!dwarf_diecu(&die, &unit, nullptr, nullptr))
            return found;
        addTailCallsOf(unit, callee.bias, callee.name, found, [&](Dwarf_Die& other, Dwarf_Addr) {
            const std::optional<Dwarf_Die> origin =
                referenceOf(other, {DW_AT_abstract_origin, DW_AT_specification});
            return dwarf_dieoffset(&other) == dwarf_dieoffset(&die) ||
                   (origin && dwarf_dieoffset(const_cast<Dwarf_Die*>(&*origin)) == dwarf_dieoffset(&die));
        });
        return found;
    }

private:
    Callee calleeOf(const Dwarf_Die& callSite, Dwarf_Addr bias) {
        const std::optional<Dwarf_Die> called = calledOf(callSite);
        return called ? Callee{linkNameOf(*called), called, bias, this} : Callee();
    }

    // Of each function in the unit that has code and that `isIt` knows by description and first address.
    template <class IsIt>
    void addTailCallsOf(const Dwarf_Die& unit, Dwarf_Addr bias, const std::string& name,
                        std::vector<TailCall>& found, const IsIt& isIt) {
        visit(unit, [&](Dwarf_Die die) {
            Dwarf_Addr low = 0;
            if (dwarf_tag(&die) == DW_TAG_subprogram && dwarf_lowpc(&die, &low) == 0 && isIt(die, low))
                addTailCalls(die, bias, name, found);
            return false;
        });
    }

    void addTailCalls(const Dwarf_Die& definition, Dwarf_Addr bias, const std::string& name,
                      std::vector<TailCall>& found) {
        visit(definition, [&](const Dwarf_Die& die) {
            if (!isCallSite(die) || !isTailCall(die))
                return false;
            // Some compilers say where the jump is, others what follows it.
            std::optional<Dwarf_Addr> inside = addressOf(die, {DW_AT_call_pc});
            if (!inside && (inside = returnOf(die)))
                --*inside;
            if (!inside)
                return false;
            TailCall call = {lineAt(*inside + bias), calleeOf(die, bias)};
            call.place.function = name;
            found.push_back(std::move(call));
            return false;
        });
    }

    // The unit that has code there. Some compilers write no index of them, which is all that the library
    // looks at.
    Dwarf_Die* unitAt(Dwarf_Addr address, Dwarf_Addr& bias) {
        if (Dwarf_Die* unit = dwfl_module_addrdie(module_, address, &bias))
            return unit;
        for (Dwarf_Die* unit = nullptr; (unit = dwfl_module_nextcu(module_, unit, &bias));)
            if (dwarf_haspc(unit, address - bias) > 0)
                return unit;
        return nullptr;
    }

    Place lineAt(Dwarf_Addr address) {
        Place place;
        Dwarf_Addr bias = 0;
        Dwarf_Die* unit = unitAt(address, bias);
        Dwarf_Line* line = unit ? dwarf_getsrc_die(unit, address - bias) : nullptr;
        int number = 0;
        if (!line || dwarf_lineno(line, &number) != 0 || number <= 0)
            return place;
        place.file = asGiven(textOf(dwarf_linesrc(line, nullptr, nullptr)), *unit);
        place.line = static_cast<unsigned int>(number);
        return place;
    }

    // The debug information has paths made absolute.
    static std::string asGiven(const std::string& file, Dwarf_Die unit) {
        std::string name = textOf(dwarf_diename(&unit));
        std::optional<Dwarf_Attribute> attribute = attributeOf(unit, DW_AT_comp_dir);
        const std::string folder = attribute ? textOf(dwarf_formstring(&*attribute)) : "";
        if (!name.empty() &&
            (fs::path(folder) / name).lexically_normal() == fs::path(file).lexically_normal())
            return name;
        const bool relative = !fs::path(name).is_absolute();
        if (relative && !folder.empty() && file.starts_with(folder + '/'))
            return file.substr(folder.size() + 1);
        return file;
    }

    // The functions that were inlined: the innermost has the line that was found, each next one the line of
    // the call that was inlined in it.
    void addInlined(Dwarf_Addr address, std::vector<Place>& places) {
        Dwarf_Addr bias = 0;
        Dwarf_Die* unit = unitAt(address, bias);
        Dwarf_Files* files = nullptr;
        std::size_t fileCount = 0;
        if (!unit || dwarf_getsrcfiles(unit, &files, &fileCount) != 0)
            return;
        Dwarf_Die* scopes = nullptr;
        const int count = dwarf_getscopes(unit, address - bias, &scopes);
        const std::unique_ptr<Dwarf_Die, decltype(&std::free)> owner(scopes, &std::free);
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
            if (file < fileCount && caller.line > 0)
                caller.file = asGiven(textOf(dwarf_filesrc(files, file, nullptr, nullptr)), *unit);
            places.push_back(caller);
        }
    }

    // The functions that have code here, by the names by which they are linked. A compiler that makes several
    // of one gives the others names with a point.
    const std::unordered_multimap<std::string, Dwarf_Addr>& symbols() {
        const int count = module_ && symbols_.empty() ? dwfl_module_getsymtab(module_) : 0;
        for (int i = 0; i < count; ++i) {
            GElf_Sym symbol = {};
            GElf_Addr address = 0;
            GElf_Word section = 0;
            const char* name =
                dwfl_module_getsym_info(module_, i, &symbol, &address, &section, nullptr, nullptr);
            if (name && GELF_ST_TYPE(symbol.st_info) == STT_FUNC && section != SHN_UNDEF)
                symbols_.emplace(std::string_view(name).substr(0, std::string_view(name).find('.')), address);
        }
        return symbols_;
    }

    Dwfl* dwfl_ = nullptr;
    Dwfl_Module* module_ = nullptr;
    Dwarf_Addr bias_ = 0;
    std::unordered_multimap<std::string, Dwarf_Addr> symbols_;
    std::map<Dwarf_Off, std::unordered_map<Dwarf_Addr, Callee>> calledByReturn_;
};

class PlacesByDwarf final : public PlaceFinder {
public:
    PlacesByDwarf() {
        // A server of debug information may keep the program waiting for minutes.
        unsetenv("DEBUGINFOD_URLS");
    }

    Place find(const std::string& module, std::uint64_t address, const std::string& function) override {
        const Callee called = module.empty() ? Callee() : moduleOf(module).calledAt(address);
        if (!called.name.empty() && called.name != function) {
            std::vector<TailCall> certain, possible;
            findTailCalls(called, function, 0, certain, possible);
            const std::vector<TailCall>& found = certain.empty() ? possible : certain;
            // A compiler may write the same call several times.
            const auto isSame = [&](const TailCall& call) {
                return call.place.file == found.front().place.file &&
                       call.place.line == found.front().place.line;
            };
            if (!found.empty() && std::ranges::all_of(found, isSame))
                return found.front().place;
        }
        return findAll(module, address).front();
    }

    void addModule(const std::string& path) override { paths_.insert(path); }

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
    Module& moduleOf(const std::string& path) {
        paths_.insert(path);
        return modules_.try_emplace(path, path).first->second;
    }

    // The calls by which `from` may have come to `function`, itself or through others: those that are said to
    // go there, and those, by a pointer for example, of which nothing is said.
    void findTailCalls(const Callee& from, const std::string& function, int depth,
                       std::vector<TailCall>& certain, std::vector<TailCall>& possible) {
        constexpr int deepest = 4;
        if (depth == deepest)
            return;
        for (TailCall& call : tailCallsOf(from))
            if (call.called.name == function)
                certain.push_back(std::move(call));
            else if (call.called.name.empty())
                possible.push_back(std::move(call));
            else
                findTailCalls(call.called, function, depth + 1, certain, possible);
    }

    std::vector<TailCall> tailCallsOf(const Callee& function) {
        if (std::vector<TailCall> calls = function.module->tailCallsOf(function); !calls.empty())
            return calls;
        const std::set<std::string> paths = paths_;
        for (const std::string& path : paths)
            if (std::vector<TailCall> calls = moduleOf(path).tailCallsOf(function.name); !calls.empty())
                return calls;
        return {};
    }

    std::set<std::string> paths_;
    std::map<std::string, Module> modules_;
};

} // namespace

} // namespace ZLT::Interception

ZLT::Interception::PlaceFinder* zlt_make_place_finder() {
    static ZLT::Interception::PlacesByDwarf finder;
    return &finder;
}
