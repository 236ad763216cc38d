// The start inside of a program: the channel that the environment names is opened, and the environment is as
// it would be without us.

#include "intercept/Calls.h"
#include "intercept/Program.h"
#include "intercept/Sites.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

extern "C" {
// LaterStubs.S: where the calls are counted.
[[gnu::visibility("hidden")]] std::atomic<std::uint64_t>* zlt_later_counts;
}

namespace ZLT::Interception {

namespace {

std::atomic<std::uint64_t> countsOfNobody[laterCapacity];

Channel* openChannel(const char* name) {
    const int file = open(name, O_RDWR | O_CLOEXEC);
    if (file < 0)
        return nullptr;
    void* memory = mmap(nullptr, sizeof(Channel), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<Channel*>(memory);
}

// The objects that the user has preloaded stay.
void takeOutOfPreload(std::string_view own) {
    const char* value = getenv("LD_PRELOAD");
    if (!value)
        return;
    std::string kept;
    for (std::string_view rest = value; !rest.empty();) {
        const std::size_t end = std::min(rest.find_first_of(" :"), rest.size());
        const std::string_view object = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (object.empty() || object == own)
            continue;
        if (!kept.empty())
            kept += ':';
        kept += object;
    }
    if (kept.empty())
        unsetenv("LD_PRELOAD");
    else
        setenv("LD_PRELOAD", kept.c_str(), 1);
}

std::string ownPath() {
    const char* path = "";
    std::uint64_t offset = 0;
    static const char anchor = 0;
    findModule(&anchor, path, offset);
    return path;
}

Channel* theChannel = nullptr;

// A child is a program of its own, which is left alone, or watched in a slot of its own.
void forked() {
    const bool watched = program().isActive() && program().options().children;
    leaveAlone();
    zlt_later_counts = countsOfNobody;
    if (!watched)
        return;
    program().attach(*theChannel);
    if (program().isActive())
        zlt_later_counts = program().writer().slot().later;
}

[[gnu::constructor]] void attach() {
    zlt_later_counts = countsOfNobody;
    const char* name = getenv(channelVariable);
    theChannel = name ? openChannel(name) : nullptr;
    if (!theChannel)
        return;
    program().attach(*theChannel);
    if (!program().isActive())
        return;
    zlt_later_counts = program().writer().slot().later;
    pthread_atfork(nullptr, nullptr, forked);
    if (theChannel->options.children)
        return;
    unsetenv(channelVariable);
    takeOutOfPreload(ownPath());
}

} // namespace

bool findModule(const void* address, const char*& path, std::uint64_t& offset) {
    dl_find_object found = {};
    if (_dl_find_object(const_cast<void*>(address), &found) != 0 || !found.dlfo_link_map)
        return false;
    path = found.dlfo_link_map->l_name;
    offset = reinterpret_cast<std::uintptr_t>(address) - found.dlfo_link_map->l_addr;
    return true;
}

std::vector<std::string> newModules() {
    static unsigned long long seen = 0;
    struct Search {
        std::vector<std::string> paths;
        unsigned long long added;
    } search = {};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) {
            auto& found = *static_cast<Search*>(data);
            found.added = info->dlpi_adds;
            if (found.added == seen)
                return 1;
            found.paths.push_back(filePath(info->dlpi_name));
            return 0;
        },
        &search);
    seen = search.added;
    return search.paths;
}

std::string filePath(const char* module) {
    if (*module == '/')
        return module;
    char path[PATH_MAX] = "";
    return realpath(*module ? module : "/proc/self/exe", path) ? path : module;
}

} // namespace ZLT::Interception
