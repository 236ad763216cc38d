#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace Bench {

/// A new folder for the files of a run, which goes with them when this does.
class TemporaryFolder {
public:
    TemporaryFolder() { std::filesystem::create_directory(path_); }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path() const { return path_.string(); }

private:
    std::filesystem::path path_ =
        std::filesystem::temp_directory_path() / ("zlt_bench_" + std::to_string(std::random_device()()));
};

} // namespace Bench
