// As CreateProcess and the command interpreter look a program up, but that PATHEXT is taken to be the usual
// one.

#include "../ProgramFile.h"

#include "PeFile.h"

#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <sstream>

namespace ZLT::Interception {

namespace {

std::string lowered(std::string text) {
    for (char& letter : text)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

// Not by std::filesystem, which takes these texts for UTF-8: arguments and the environment are in the
// system's own encoding.
bool isFile(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::string extensionOf(const std::string& path) {
    const std::string name = path.substr(path.find_last_of("/\\:") + 1);
    const std::size_t dot = name.rfind('.');
    return dot == name.npos ? "" : lowered(name.substr(dot));
}

bool isScriptFile(const std::string& path) {
    const std::string extension = extensionOf(path);
    return extension == ".bat" || extension == ".cmd";
}

// A name without an extension is that of a file with one of these.
std::optional<std::string> withExtension(const std::string& path) {
    if (!extensionOf(path).empty())
        return isFile(path) ? std::optional(path) : std::nullopt;
    for (const char* extension : {".com", ".exe", ".bat", ".cmd"})
        if (isFile(path + extension))
            return path + extension;
    return {};
}

std::string lookUp(const std::string& name) {
    if (name.find_first_of("/\\:") != name.npos) {
        if (const std::optional<std::string> file = withExtension(name))
            return *file;
        struct stat status = {};
        if (stat(name.c_str(), &status) != 0)
            throw Refusal(name + ": " + std::strerror(errno), Refusal::notFound);
        if (S_ISDIR(status.st_mode))
            throw Refusal(name + " is a folder", Refusal::unsuitable);
        return name;
    }
    const char* path = std::getenv("PATH");
    std::istringstream folders(std::string(".;") + (path ? path : ""));
    for (std::string folder; std::getline(folders, folder, ';');) {
        std::erase(folder, '"');
        if (folder.empty())
            continue;
        folder += static_cast<char>(std::filesystem::path::preferred_separator);
        if (const std::optional<std::string> file = withExtension(folder + name))
            return *file;
    }
    throw Refusal("There is no program " + name + " in the PATH", Refusal::notFound);
}

} // namespace

ProgramFile findProgram(const std::string& name) {
    ProgramFile program;
    program.path = lookUp(name);
    program.isScript = isScriptFile(program.path);
    if (program.isScript)
        return program;
    const auto refuse = [&](const std::string& reason) {
        throw Refusal(program.path + ' ' + reason, Refusal::unsuitable);
    };
    if (!PeFile::isOne(program.path))
        refuse("is no program of this system: neither a PE file nor a script");
    try {
        const PeFile file(program.path);
        if (!file.is64())
            refuse("is a program of 32 bits; this is for programs of 64 bits");
        if (file.machine() != PeFile::x86_64)
            refuse("is a program for another processor");
        if (file.isDll())
            refuse("is no program: it is a DLL");
        if (!file.isLinked())
            refuse("is no program: it was not linked");
    } catch (const Refusal&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw Refusal(error.what(), Refusal::unsuitable);
    }
    return program;
}

} // namespace ZLT::Interception
