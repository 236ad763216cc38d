#include "Run.h"

#include "LibraryOGL.h"
#include "zlt/core/Core.h"
#include "zlt/core/Exceptions.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <sstream>

int runExample(const std::function<int()>& body) {
    try {
        ZLT::Core::Library::initialize();
        ZLT::OGL::Library::initialize(ZLT::OGL::Library::InitOptions());
        const int result = body();
        ZLT::OGL::Library::terminate();
        std::ostringstream left;
        ZLT::Core::Library::terminate(&left);
        if (left.str().empty())
            return result;
        std::cerr << "not released:\n" << left.str();
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cerr);
        std::cerr << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
    }
    return 1;
}

std::string outputPath(int argc, char** argv, const char* file) {
    const std::filesystem::path folder = std::filesystem::absolute(argc > 1 ? argv[1] : ".");
    std::filesystem::create_directories(folder);
    return (folder / file).string();
}
