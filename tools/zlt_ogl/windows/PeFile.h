#pragma once

#include "Bytes.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ZLT::Interception {

/// A program or a DLL of Windows. Its addresses are counted from where it is loaded.
/// Everything throws std::runtime_error with a sentence where the file can't be read, is no such file or is
/// damaged.
class PeFile {
public:
    struct Section {
        std::string name;
        std::uint32_t address = 0, size = 0;
        std::uint32_t fileOffset = 0, fileSize = 0;
    };
    static constexpr std::uint16_t x86_64 = 0x8664;

    explicit PeFile(const std::string& path);
    PeFile(const PeFile&) = delete;
    PeFile& operator=(const PeFile&) = delete;

    /// By its first letters, which those of MS-DOS have too.
    static bool isOne(const std::string& path);

    std::uint16_t machine() const { return machine_; }
    bool is64() const { return is64_; }
    /// Else the linker found errors.
    bool isLinked() const { return isLinked_; }
    bool isDll() const { return isDll_; }
    std::uint64_t imageBase() const { return imageBase_; }
    const std::vector<Section>& sections() const { return sections_; }

    /// What the file has of a section; empty where there is none of this name. Valid as long as this object.
    std::string_view content(std::string_view section) const;
    /// The names of the DLLs that are loaded with it.
    std::vector<std::string> imports() const;
    /// The symbol of the function, which is not demangled; empty where it is not known.
    std::string functionAt(std::uint64_t address);

private:
    void readHeads();
    void readFunctions();
    Bytes at(std::uint64_t offset) const { return Bytes({bytes_.get(), size_}, offset); }
    Bytes atAddress(std::uint64_t address) const;
    std::string_view content(const Section& section) const;
    const Section* sectionAt(std::uint64_t address) const;
    std::string_view longName(std::uint64_t offset) const;
    template <class Reading>
    auto orDamaged(Reading reading) const;

    std::string path_;
    std::size_t size_ = 0;
    std::unique_ptr<char[]> bytes_;
    std::uint16_t machine_ = 0;
    bool is64_ = false, isLinked_ = false, isDll_ = false;
    std::uint64_t imageBase_ = 0;
    std::uint64_t importAddress_ = 0;
    std::uint64_t symbols_ = 0, symbolCount_ = 0;
    std::vector<Section> sections_;
    bool functionsAreRead_ = false;
    std::map<std::uint64_t, std::string_view> functions_;
};

} // namespace ZLT::Interception
