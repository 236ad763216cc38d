#include "DriverContext.h"
#include "HeadlessContext.h"

#include <dlfcn.h>
#include <link.h>

#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class Pbuffer : public DriverContext {
    HeadlessContext context_{size, size};
};

// EGL unloads the driver with its last context; a sanitizer that reports at the end of the process then can't
// name it. Keeps all libraries that are loaded now.
void keepLibrariesLoaded() {
    std::vector<std::string> names;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* names) {
            static_cast<std::vector<std::string>*>(names)->emplace_back(info->dlpi_name);
            return 0;
        },
        &names);
    for (const std::string& name : names)
        if (!name.empty())
            dlopen(name.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

} // namespace

std::unique_ptr<DriverContext> DriverContext::open(std::string& why) {
    try {
        auto context = std::make_unique<Pbuffer>();
        static std::once_flag once;
        std::call_once(once, keepLibrariesLoaded);
        return context;
    } catch (const std::runtime_error& error) {
        why = error.what();
        return nullptr;
    }
}
