// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace test {

/** A folder of a test's own, gone with everything in it when the test ends. */
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path() const { return path_.string(); }
    std::string file(const std::string& name) const { return (path_ / name).string(); }

    /** Names of everything in it, sorted. */
    std::vector<std::string> names() const;

private:
    std::filesystem::path path_;
};

void writeFile(const std::string& path, const std::string& bytes);
std::string readFile(const std::string& path);

/** A copy that ends so many bytes early. */
void copyShortened(const std::string& from, const std::string& to, std::size_t missingBytes);

}  // namespace test
