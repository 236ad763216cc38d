#include "ProgramFile.h"

#include <elf.h>
#include <fcntl.h>
#include <gelf.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace ZLT::Interception {

namespace {

bool isFile(const std::string& path, struct stat& status) {
    return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::string lookUp(const std::string& name) {
    struct stat status = {};
    if (name.find('/') != std::string::npos) {
        if (stat(name.c_str(), &status) != 0)
            throw Refusal(name + ": " + std::strerror(errno), Refusal::notFound);
        if (S_ISDIR(status.st_mode))
            throw Refusal(name + " is a folder", Refusal::unsuitable);
        if (access(name.c_str(), X_OK) != 0)
            throw Refusal(name + " is not executable", Refusal::unsuitable);
        return name;
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(path ? path : "/usr/local/bin:/usr/bin:/bin");
    bool there = false;
    for (std::string folder; std::getline(folders, folder, ':');) {
        std::string file = (folder.empty() ? "." : folder) + '/' + name;
        if (!isFile(file, status))
            continue;
        there = true;
        if (access(file.c_str(), X_OK) == 0)
            return file;
    }
    if (there)
        throw Refusal(name + " is not executable", Refusal::unsuitable);
    if (isFile(name, status))
        throw Refusal("There is no program " + name + " in the PATH; the one in this folder is ./" + name,
                      Refusal::notFound);
    throw Refusal("There is no program " + name + " in the PATH", Refusal::notFound);
}

// The loader takes no preloaded object into a program that has more rights than its user.
void refusePrivileges(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return;
    const bool otherUser = (status.st_mode & S_ISUID) && status.st_uid != getuid();
    const bool otherGroup = (status.st_mode & S_ISGID) && status.st_gid != getgid();
    if (otherUser || otherGroup)
        throw Refusal(
            path + " runs with the rights of another user (set-uid or set-gid), and the system lets nothing "
                   "into such a program",
            Refusal::unsuitable);
    if (getuid() != 0 && getxattr(path.c_str(), "security.capability", nullptr, 0) > 0)
        throw Refusal(path + " has capabilities of its own, and the system lets nothing into such a program",
                      Refusal::unsuitable);
}

class ElfFile {
public:
    explicit ElfFile(const std::string& path) : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
        elf_version(EV_CURRENT);
        elf_ = file_ < 0 ? nullptr : elf_begin(file_, ELF_C_READ, nullptr);
    }
    ~ElfFile() {
        elf_end(elf_);
        if (file_ >= 0)
            close(file_);
    }
    ElfFile(const ElfFile&) = delete;
    ElfFile& operator=(const ElfFile&) = delete;

    bool isElf() const { return elf_ && elf_kind(elf_) == ELF_K_ELF; }
    GElf_Ehdr header() const {
        GElf_Ehdr header = {};
        gelf_getehdr(elf_, &header);
        return header;
    }
    bool hasInterpreter() const {
        std::size_t count = 0;
        elf_getphdrnum(elf_, &count);
        for (std::size_t i = 0; i < count; ++i) {
            GElf_Phdr segment = {};
            if (gelf_getphdr(elf_, static_cast<int>(i), &segment) && segment.p_type == PT_INTERP)
                return true;
        }
        return false;
    }
    std::vector<std::string> needed() const {
        std::vector<std::string> names;
        for (Elf_Scn* section = nullptr; (section = elf_nextscn(elf_, section));) {
            GElf_Shdr head = {};
            Elf_Data* data = elf_getdata(section, nullptr);
            if (!gelf_getshdr(section, &head) || head.sh_type != SHT_DYNAMIC || !data || head.sh_entsize == 0)
                continue;
            for (std::size_t i = 0; i < head.sh_size / head.sh_entsize; ++i) {
                GElf_Dyn entry = {};
                if (!gelf_getdyn(data, static_cast<int>(i), &entry) || entry.d_tag != DT_NEEDED)
                    continue;
                if (const char* name = elf_strptr(elf_, head.sh_link, entry.d_un.d_val))
                    names.emplace_back(name);
            }
        }
        return names;
    }

private:
    int file_ = -1;
    Elf* elf_ = nullptr;
};

} // namespace

ProgramFile findProgram(const std::string& name) {
    ProgramFile program;
    program.path = lookUp(name);
    refusePrivileges(program.path);
    const ElfFile elf(program.path);
    if (!elf.isElf()) {
        std::ifstream file(program.path, std::ios::binary);
        char start[2] = {};
        file.read(start, sizeof start);
        if (!file || start[0] != '#' || start[1] != '!')
            throw Refusal(program.path + " is no program of this system: neither an ELF file nor a script",
                          Refusal::unsuitable);
        program.isScript = true;
        return program;
    }
    const GElf_Ehdr header = elf.header();
    if (header.e_ident[EI_CLASS] == ELFCLASS32)
        throw Refusal(program.path + " is a program of 32 bits; this is for programs of 64 bits",
                      Refusal::unsuitable);
    if (header.e_machine != EM_X86_64)
        throw Refusal(program.path + " is a program for another processor", Refusal::unsuitable);
    if (header.e_type != ET_EXEC && header.e_type != ET_DYN)
        throw Refusal(program.path + " is no program: it was not linked", Refusal::unsuitable);
    if (!elf.hasInterpreter())
        throw Refusal(program.path + " is statically linked, so nothing can be put between it and GL",
                      Refusal::unsuitable);
    for (const std::string& library : elf.needed())
        if (library.starts_with("libasan.so"))
            program.first.push_back(library); // which insists on being the first
    return program;
}

} // namespace ZLT::Interception
