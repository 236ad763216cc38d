#pragma once

#include "ProgramFile.h"
#include "zlt/core/Exceptions.h"

#include <exception>
#include <iostream>

namespace ZLT::Interception {

/// What main() does around its work: each failure is a sentence on standard error, and a status.
inline int guarded(int (*work)(int, char**), int argc, char** argv) {
    try {
        return work(argc, argv);
    } catch (const Refusal& refusal) {
        std::cerr << "zlt_ogl: " << refusal.what() << ".\n";
        return refusal.status();
    } catch (const LogicalException& error) {
        std::cerr << "zlt_ogl: ";
        error.write(std::cerr);
        std::cerr << '\n';
    } catch (const std::exception& error) {
        std::cerr << "zlt_ogl: " << error.what() << ".\n";
    }
    return 1;
}

} // namespace ZLT::Interception
