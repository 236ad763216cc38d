// Files as text in a source.

#include "Emit.h"

#include <fstream>
#include <stdexcept>

namespace generator {

namespace {

std::string literalOf(const std::string& line) {
    std::string text = "    \"";
    for (const char letter : line) {
        if (letter == '"' || letter == '\\')
            text += '\\';
        if (letter == '\t')
            text += "\\t";
        else if (letter != '\r')
            text += letter;
    }
    return text + "\\n\"\n";
}

} // namespace

void emitFiles(const std::vector<std::string>& files, const std::filesystem::path& output) {
    std::string text = "// Generated from files.\nconstexpr EmbeddedFile embeddedFiles[] = {\n";
    for (const std::string& named : files) {
        const std::size_t end = named.find('=');
        const std::filesystem::path path = named.substr(end == std::string::npos ? 0 : end + 1);
        std::ifstream file(path, std::ios::binary);
        if (!file)
            throw std::runtime_error("cannot read " + path.string());
        const bool isFilled = path.extension() == ".in";
        const std::string name = (isFilled ? path.stem() : path.filename()).string();
        text += "    {\"" + (end == std::string::npos ? name : named.substr(0, end)) + "\",\n";
        for (std::string line; std::getline(file, line);)
            text += literalOf(line);
        text += std::string("     , ") + (isFilled ? "true},\n" : "false},\n");
    }
    writeFile(output, text + "};\n");
}

} // namespace generator
