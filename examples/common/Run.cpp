#include "Run.h"

#include "LibraryOGL.h"
#include "zlt/core/Core.h"
#include "zlt/core/Exceptions.h"

#include <exception>
#include <iostream>

int runExample(const std::function<int()>& body) {
    try {
        ZLT::Core::Library::initialize();
        ZLT::OGL::Library::initialize(ZLT::OGL::Library::InitOptions());
        const int result = body();
        ZLT::OGL::Library::terminate();
        ZLT::Core::Library::terminate(&std::cerr);
        return result;
    } catch (const ZLT::LogicalException& error) {
        error.write(std::cerr);
        std::cerr << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
    }
    return 1;
}
