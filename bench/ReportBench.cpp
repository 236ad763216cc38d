// Reports: what one takes beside the replay of the same capture, of 2 million calls and more; how large its
// page is, and how long Chromium takes to open it.

#include "Comparison.h"
#include "Shell.h"
#include "TemporaryFolder.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

int main() {
    setenv("EGL_PLATFORM", "surfaceless", 1);
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    const Bench::TemporaryFolder temporary;
    const std::string command = "'" ZLT_OGL_COMMAND "' ", page = temporary.path() + "/page.html";
    for (const char* arguments : {"frames 2000", "parameters 2000000"}) {
        const std::string file = std::string("'").append(temporary.path()).append("/many.zlt' ");
        Bench::runShell(command + "capture -o " + file + "'" FRAME_LOOP "' " + arguments);
        const Bench::Usage replay = Bench::runShell(command + "replay " + file);
        const Bench::Usage report = Bench::runShell(command + "report " + file + "-o '" + page + "'");
        std::printf("%s: report %.2f s, replay %.2f s, beside it %.2f s (aim at most 10); %.0f MiB of "
                    "memory; page %.1f "
                    "MiB (aim below 30)\n",
                    arguments, report.seconds, replay.seconds, report.seconds - replay.seconds,
                    report.mebibytes, static_cast<double>(std::filesystem::file_size(page)) / (1 << 20));
        std::fflush(stdout);
        // It says how long the page takes to open (aim below 3 s).
        static_cast<void>(
            std::system(("'" REPORT_TEST "' '" + page + "' -k testOpens 2>&1 | grep 'the page'").c_str()));
    }
}
