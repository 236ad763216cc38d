#pragma once

#include <string>

namespace ZLT::Interception {

struct PageOptions {
    std::string file;
    std::string page;   ///< the page that is written; "": the capture's name and .html, or a name like it
    std::string chrome; ///< the trace for Chrome's viewers; "" for none
    bool opens = false; ///< shows the page in a browser
};

/// `zlt_ogl report`.
/// @return the exit status: 1 where the capture is damaged
int makeReport(const PageOptions& options);

} // namespace ZLT::Interception
