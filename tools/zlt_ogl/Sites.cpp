#include "Sites.h"

#include "intercept/Channel.h"

#include <cstring>

namespace ZLT::Interception {

void KnownSites::add(std::size_t process, std::string_view record) {
    SiteRecord head;
    if (record.size() < sizeof head)
        return;
    std::memcpy(&head, record.data(), sizeof head);
    if (sites_.size() <= process)
        sites_.resize(process + 1);
    std::vector<Site>& sites = sites_[process];
    // Their numbers follow one another.
    if (head.site != sites.size() + 1)
        return;
    Site& site = sites.emplace_back();
    site.module = record.substr(sizeof head);
    site.address = head.address;
}

KnownSites::Site& KnownSites::site(std::size_t process, std::uint32_t number) {
    if (process >= sites_.size() || number == 0 || number > sites_[process].size())
        return unknown_;
    return sites_[process][number - 1];
}

// Loaded with the first place that is wanted: most programs have no error.
PlaceFinder& KnownSites::finder() {
    PlaceFinder& all = placeFinder();
    for (const std::string& module : newModules_)
        all.addModule(module);
    newModules_.clear();
    return all;
}

const Place& KnownSites::place(std::size_t process, std::uint32_t number, std::string_view function) {
    Site& at = site(process, number);
    const auto known = at.byFunction.find(function);
    if (known != at.byFunction.end())
        return known->second;
    const std::string name(function);
    return at.byFunction.emplace(name, finder().find(at.module, at.address, name)).first->second;
}

std::vector<Place> KnownSites::inlined(std::size_t process, std::uint32_t number) {
    Site& at = site(process, number);
    return finder().findAll(at.module, at.address);
}

} // namespace ZLT::Interception
