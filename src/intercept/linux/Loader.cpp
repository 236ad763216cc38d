// dlsym, dlopen, dlclose and dlerror, through which a program opens GL for itself. Each call that is not
// about GL goes on by a jump, so that the loader sees the program's own address: by it it finds the caller's
// run path, and what RTLD_NEXT means.

#include "intercept/Intercepted.h"
#include "intercept/linux/Libraries.h"
#include "intercept/linux/RealLoader.h"

#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string_view>

namespace ZLT::Interception {

namespace {

// Whether the answer to the program's question is a function of GL, and not one of the program's own that has
// a name of GL: it lies in a library of the driver.
bool isOfDriver(const void* address) {
    const char* path = nullptr;
    std::uint64_t offset = 0;
    if (!findModule(address, path, offset))
        return false;
    const std::string_view whole = path;
    const std::string_view file = whole.substr(whole.find_last_of('/') + 1);
    for (const std::string_view driver : {"libGL", "libOpenGL", "libEGL", "libglapi", "libnvidia"})
        if (file.starts_with(driver))
            return true;
    return false;
}

// RTLD_NEXT of the program: the libraries that were loaded after the caller's, in their order.
void* nextOf(const void* caller, const char* name) {
    Dl_info info = {};
    link_map* map = nullptr;
    if (!dladdr1(caller, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) || !map)
        return realDlsym(RTLD_NEXT, name);
    for (map = map->l_next; map; map = map->l_next) {
        void* handle = *map->l_name ? realDlopen(map->l_name, RTLD_NOLOAD | RTLD_LAZY) : nullptr;
        if (!handle)
            continue;
        void* found = realDlsym(handle, name);
        realDlclose(handle);
        if (found)
            return found;
    }
    return nullptr;
}

// Another object that stands in front of GL, and asks for what is behind it: that has to be the driver's.
bool standsInFront(const void* caller, const char* name) {
    Dl_info info = {}, own = {};
    if (!dladdr(caller, &info) || !info.dli_fname)
        return false;
    void* handle = realDlopen(info.dli_fname, RTLD_NOLOAD | RTLD_LAZY);
    if (!handle)
        return false;
    void* found = realDlsym(handle, name);
    realDlclose(handle);
    return found && dladdr(found, &own) && own.dli_fbase == info.dli_fbase;
}

struct Answer {
    void* result;
    std::intptr_t isFinal; // else the loader's own function is called in our place
};

// An object that was opened with RTLD_DEEPBIND prefers its own libraries to us: what it has bound to GL, and
// what it will bind, is set to ours.
void bindToOurs(const link_map& map) {
    const ElfW(Sym)* symbols = nullptr;
    const char* names = nullptr;
    const ElfW(Rela) * tables[2] = {};
    std::size_t sizes[2] = {};
    for (const ElfW(Dyn)* entry = map.l_ld; entry->d_tag != DT_NULL; ++entry)
        switch (entry->d_tag) {
        case DT_SYMTAB:
            symbols = reinterpret_cast<const ElfW(Sym)*>(entry->d_un.d_ptr);
            break;
        case DT_STRTAB:
            names = reinterpret_cast<const char*>(entry->d_un.d_ptr);
            break;
        case DT_RELA:
            tables[0] = reinterpret_cast<const ElfW(Rela)*>(entry->d_un.d_ptr);
            break;
        case DT_RELASZ:
            sizes[0] = entry->d_un.d_val;
            break;
        case DT_JMPREL:
            tables[1] = reinterpret_cast<const ElfW(Rela)*>(entry->d_un.d_ptr);
            break;
        case DT_PLTRELSZ:
            sizes[1] = entry->d_un.d_val;
            break;
        default:
            break;
        }
    if (!symbols || !names)
        return;
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < 2; ++i)
        for (std::size_t j = 0; tables[i] && j < sizes[i] / sizeof(ElfW(Rela)); ++j) {
            const ElfW(Rela)& relocation = tables[i][j];
            const auto type = ELF64_R_TYPE(relocation.r_info);
            const ElfW(Sym)& symbol = symbols[ELF64_R_SYM(relocation.r_info)];
            if ((type != R_X86_64_JUMP_SLOT && type != R_X86_64_GLOB_DAT && type != R_X86_64_64) ||
                symbol.st_shndx != SHN_UNDEF)
                continue;
            const Replacement replacement = replacementOf(names + symbol.st_name);
            if (!replacement.ours)
                continue;
            auto* slot = reinterpret_cast<RealFunction*>(map.l_addr + relocation.r_offset);
            const auto begin = reinterpret_cast<std::uintptr_t>(slot) / page * page;
            // Relocations are read-only after the start, and nothing tells whether these are.
            if (mprotect(reinterpret_cast<void*>(begin), page, PROT_READ | PROT_WRITE) == 0)
                *slot = replacement.ours;
        }
}

void bindAllToOurs(void* handle) {
    link_map* map = nullptr;
    if (dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0)
        return;
    // Its libraries follow it. One that was there before may be bound anew without harm: it has ours already.
    for (; map; map = map->l_next) {
        const char* slash = std::strrchr(map->l_name, '/');
        const std::string_view file = slash ? slash + 1 : map->l_name;
        if (!file.starts_with("libGL") && !file.starts_with("libEGL") && !file.starts_with("libOpenGL"))
            bindToOurs(*map);
    }
}

} // namespace

} // namespace ZLT::Interception

using namespace ZLT::Interception;

extern "C" {
[[gnu::visibility("hidden")]] Answer zlt_answer_dlsym(void* handle, const char* name, const void* caller);
[[gnu::visibility("hidden")]] Answer zlt_answer_dlopen(const char* file, int flags, const void* caller);
[[gnu::visibility("hidden")]] void* zlt_real_dlsym();
[[gnu::visibility("hidden")]] void* zlt_real_dlopen();
}

// The next object's, for the program's own questions.
void* zlt_real_dlsym() { return realDlsym(RTLD_NEXT, "dlsym"); }
void* zlt_real_dlopen() { return realDlsym(RTLD_NEXT, "dlopen"); }

Answer zlt_answer_dlsym(void* handle, const char* name, const void* caller) {
    KeepError::forget();
    if (!name || (std::strncmp(name, "gl", 2) != 0 && std::strncmp(name, "egl", 3) != 0) ||
        !program().isActive())
        return {nullptr, false};
    const Replacement replacement = replacementOf(name);
    if (!replacement.ours || isOurs(caller))
        return {nullptr, false};
    void* found = handle == RTLD_NEXT ? nextOf(caller, name)
                                      : realDlsym(handle == RTLD_DEFAULT ? RTLD_NEXT : handle, name);
    // Of a handle for the whole program ours is the first one.
    if (found == reinterpret_cast<void*>(replacement.ours))
        found = realDlsym(RTLD_NEXT, name);
    if (found && isOfDriver(found) && !standsInFront(caller, name))
        found = reinterpret_cast<void*>(handOut(name, reinterpret_cast<RealFunction>(found)));
    return {found, true};
}

Answer zlt_answer_dlopen(const char* file, int flags, const void*) {
    KeepError::forget();
    if (!(flags & RTLD_DEEPBIND) || !file || !program().isActive())
        return {nullptr, false};
    void* handle = realDlopen(file, flags);
    // What only the caller's own run path finds, the loader opens by itself.
    if (!handle)
        return {nullptr, false};
    const KeepError keep;
    bindAllToOurs(handle);
    return {handle, true};
}

// Asks; then returns the answer, or jumps to the loader's function with the caller's own return address.
asm(R"(
        .macro zlt_loader_function name
        .text
        .globl \name
        .type \name, @function
\name:
        endbr64
        pushq %rdi
        pushq %rsi
        subq $8, %rsp
        movq 24(%rsp), %rdx
        call zlt_answer_\name
        testq %rdx, %rdx
        jnz 1f
        call zlt_real_\name
        addq $8, %rsp
        popq %rsi
        popq %rdi
        jmp *%rax
1:
        addq $24, %rsp
        ret
        .size \name, . - \name
        .endm
        zlt_loader_function dlsym
        zlt_loader_function dlopen
)");

ZLT_INTERCEPTED int dlclose(void* handle) noexcept {
    const int result = realDlclose(handle);
    if (program().isActive())
        forgetSites();
    return result;
}

ZLT_INTERCEPTED char* dlerror() noexcept { return KeepError::error(); }
