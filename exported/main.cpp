// Plays the frames.
#include "mapped_file.h"
#include "system.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include "stb_image_write.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

void forget_everything();
std::uint64_t hash_of(const std::vector<unsigned char>& bytes);

namespace {

constexpr const char* help = R"(Plays the frames of a capture.

  --headless    off screen, without a window system
  --verify      compare with what was captured; says which frame differs first
  --png FOLDER  write a picture of each frame to this folder
  --loop N      play all of it N times
  --help        this text
)";

std::unique_ptr<MappedFile> file;
std::size_t frame = 0;
std::string first_difference;
bool is_ended = false;

std::string number_of(std::size_t index) { return std::to_string(first_frame + index); }

void write_picture(const std::vector<unsigned char>& pixels, int width, int height) {
    char name[40];
    std::snprintf(name, sizeof name, "/frame-%06llu.png",
                  static_cast<unsigned long long>(first_frame + frame));
    const std::string path = options.pictures + name;
    std::ofstream to(path, std::ios::binary);
    const auto write = [](void* stream, void* bytes, int size) {
        static_cast<std::ofstream*>(stream)->write(static_cast<const char*>(bytes), size);
    };
    stbi_flip_vertically_on_write(1);
    stbi_write_png_to_func(write, &to, width, height, 4, pixels.data(), 4 * width);
    if (!to.flush())
        throw std::runtime_error(path + " can't be written");
}

std::string path_of_data(const char* program) {
    // Beside the program, else where it was built from.
    const std::string path = program;
    const std::size_t end = path.find_last_of("/\\");
    const std::string beside = path.substr(0, end == std::string::npos ? 0 : end + 1) + "data.bin";
    return std::ifstream(beside) ? beside : DATA_FILE;
}

int run(int count, char** words) {
    bool is_headless = false;
    long times = 1;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const char* const next = i + 1 < count ? words[i + 1] : nullptr;
        if (word == "--headless") {
            is_headless = true;
        } else if (word == "--verify") {
            options.verifies = true;
        } else if (word == "--png" && next) {
            options.pictures = next;
            ++i;
        } else if (word == "--loop" && next && (times = std::strtol(next, nullptr, 10)) > 0) {
            ++i;
        } else {
            (word == "--help" ? std::cout : std::cerr) << help;
            return word == "--help" ? 0 : 2;
        }
    }
    if (!options.pictures.empty())
        std::filesystem::create_directories(options.pictures);
    file = std::make_unique<MappedFile>(path_of_data(words[0]));
    const std::unique_ptr<System> system = is_headless ? make_headless_system() : make_window_system(true);
    the_system = system.get();
    for (long time = 0; time < times && !is_ended; ++time) {
        for (frame = 0; frame <= frame_count && !is_ended; ++frame)
            frames[frame].play();
        forget_everything();
    }
    if (!options.verifies)
        return 0;
    if (!first_difference.empty())
        std::cout << first_difference << '\n';
    else if (compared == 0)
        std::cout << "nothing was compared: the capture has no hashes of pictures\n";
    else
        std::cout << frame_count << (frame_count == 1 ? " frame" : " frames") << ": equal\n";
    return first_difference.empty() && compared > 0 ? 0 : 1;
}

} // namespace

std::size_t compared = 0;

const MappedFile& data_file() { return *file; }

void differs(const std::string& what) {
    if (first_difference.empty())
        first_difference = "frame " + number_of(frame) + ": " + what + " differs";
}

void swap(Surface* shown) {
    const Frame& now = frames[frame];
    const bool is_compared = options.verifies && now.has_hash;
    if (shown && shown == current_surface && (is_compared || !options.pictures.empty())) {
        const int width = shown->format.width_, height = shown->format.height_;
        const std::vector<unsigned char> pixels = read_picture(width, height);
        if (is_compared && !pixels.empty()) {
            ++compared;
            if (hash_of(pixels) != now.hash)
                differs("the picture");
        }
        if (!options.pictures.empty() && !pixels.empty())
            write_picture(pixels, width, height);
    }
    if (shown)
        the_system->swap(*shown);
    is_ended = the_system->is_closed();
}

int main(int count, char** words) {
    try {
        return run(count, words);
    } catch (const std::exception& error) {
        std::cerr << words[0] << ": " << error.what() << '\n';
        return 1;
    }
}
