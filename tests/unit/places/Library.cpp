// Templates and the C++ library, which make a program with many calls.
#include <algorithm>
#include <iostream>
#include <map>
#include <string>
#include <vector>

namespace {

std::map<std::string, std::vector<std::string>> byStart(std::vector<std::string> words) {
    std::sort(words.begin(), words.end());
    std::map<std::string, std::vector<std::string>> found;
    for (const std::string& word : words)
        found[word.substr(0, 1)].push_back(word);
    return found;
}

} // namespace

int main(int count, char** words) {
    for (const auto& [start, all] : byStart({words, words + count}))
        std::cout << start << ": " << all.size() << '\n';
    return 0;
}
