#pragma once

#include "Places.h"

#include <map>
#include <string_view>

namespace ZLT::Interception {

/// The places that a program told, by process and number.
class KnownSites {
public:
    /// A record of RecordKind::Site.
    void add(std::size_t process, std::string_view record);
    /// A record of RecordKind::Module.
    void addModule(std::string_view path) { newModules_.emplace_back(path); }
    /// @param function  what was called there, see PlaceFinder::find()
    const Place& place(std::size_t process, std::uint32_t site, std::string_view function);
    std::vector<Place> inlined(std::size_t process, std::uint32_t site);

private:
    struct Site {
        std::string module;
        std::uint64_t address = 0;
        std::map<std::string, Place, std::less<>> byFunction;
    };
    Site& site(std::size_t process, std::uint32_t number);
    PlaceFinder& finder();

    std::vector<std::vector<Site>> sites_;
    Site unknown_;
    std::vector<std::string> newModules_; // which the finder doesn't know yet
};

} // namespace ZLT::Interception
