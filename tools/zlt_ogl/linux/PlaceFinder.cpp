#include "Own.h"
#include "PlacesByDwarf.h"

#include <dlfcn.h>

#include <iostream>

namespace ZLT::Interception {

namespace {

// Where the module can't be loaded: everything is found but lines.
class NoLines final : public PlaceFinder {
public:
    Place find(const std::string& module, std::uint64_t address, const std::string&) override {
        return placeWithoutLine(module, address);
    }
    void addModule(const std::string&) override {}
    std::vector<Place> findAll(const std::string& module, std::uint64_t address) override {
        return {placeWithoutLine(module, address)};
    }
};

PlaceFinder& load() {
    static NoLines none;
    void* module = dlopen(findOwn("libzlt_places.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    const auto make =
        module ? reinterpret_cast<decltype(&zlt_make_place_finder)>(dlsym(module, "zlt_make_place_finder"))
               : nullptr;
    if (make)
        return *make();
    std::cerr << "zlt_ogl: no lines are known: " << dlerror() << '\n';
    return none;
}

} // namespace

PlaceFinder& placeFinder() {
    static PlaceFinder& finder = load();
    return finder;
}

} // namespace ZLT::Interception
