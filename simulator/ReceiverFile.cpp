#include "simulator/ReceiverFile.h"

#include "simulator/FileNames.h"
#include "simulator/Scenario.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace fieldcore::simulator {

namespace {

std::uint64_t SeedOf(std::string_view base)
{
    std::uint64_t seed = 0xCBF29CE484222325; // FNV-1a, 64 bits
    for (const char c : base) {
        seed = (seed ^ static_cast<std::uint8_t>(c)) * 0x100000001B3;
    }
    return seed;
}

/// The finisher of SplitMix64: neighbouring numbers give bytes that have nothing in common.
std::uint64_t Mix(std::uint64_t z)
{
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EB;
    return z ^ (z >> 31U);
}

bool CanBeAFile(const std::string& name)
{
    const auto isUnsafe = [](char c) {
        return c == '/' || c == '\\' || c == '\x7F' || static_cast<std::uint8_t>(c) < ' ';
    };
    return !name.empty() && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(), isUnsafe);
}

bool WriteContent(int descriptor, const ReceiverFile& file)
{
    std::vector<std::uint8_t> some(1U << 16U);
    for (std::uint64_t offset = 0; offset < file.size;) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(some.size(), file.size - offset));
        ReadFileContent(file, offset, std::span(some).first(count));
        const ssize_t written = write(descriptor, some.data(), count);
        if (written < 0) {
            return false;
        }
        offset += static_cast<std::uint64_t>(written);
    }
    return true;
}

} // namespace

void ReadFileContent(const ReceiverFile& file, std::uint64_t offset, std::span<std::uint8_t> bytes)
{
    if (!file.text.empty()) {
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(file.text[offset++ % file.text.size()]);
        }
        return;
    }
    constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15;
    const std::uint64_t seed = SeedOf(BaseName(file.name));
    for (std::size_t i = 0; i < bytes.size();) {
        std::uint64_t eight = Mix(seed + ((offset + i) / 8 + 1) * kStep);
        eight >>= (offset + i) % 8 * 8;
        do {
            bytes[i++] = static_cast<std::uint8_t>(eight);
            eight >>= 8U;
        } while (i < bytes.size() && (offset + i) % 8 != 0);
    }
}

std::vector<ReceiverFile> FilesAtStart(const Scenario& scenario)
{
    std::vector<ReceiverFile> files = scenario.files;
    for (ReceiverFile& file : files) {
        const bool bare = file.name.find('.') == std::string::npos;
        if (bare && FamilyOf(scenario.typeNumber) == Family::Lark) {
            file.name += Extension(scenario, file.state == FileState::Deleted);
        }
    }
    return files;
}

bool ExportFiles(const Scenario& scenario, const std::filesystem::path& folder,
                 std::vector<std::string>& leftOut, std::string& error)
{
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure) {
        error = folder.string() + ": " + failure.message();
        return false;
    }
    std::set<std::string> names;
    for (const ReceiverFile& file : FilesAtStart(scenario)) {
        if (!CanBeAFile(file.name) || !names.insert(file.name).second) {
            leftOut.push_back(file.name);
            continue;
        }
        const std::string path = (folder / file.name).string();
        const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        bool good = descriptor >= 0 && WriteContent(descriptor, file);
        const int cause = errno;
        if (descriptor >= 0) {
            good = close(descriptor) == 0 && good;
        }
        if (!good) {
            error = path + ": " + std::generic_category().message(cause);
            return false;
        }
    }
    return true;
}

} // namespace fieldcore::simulator
