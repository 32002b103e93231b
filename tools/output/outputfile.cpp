#include "tools/output/outputfile.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <stdexcept>

namespace ZUNO::Tools {

namespace fs = std::filesystem;
namespace Platform = Common::Platform;
using Platform::FileError;

namespace {

/// The file in the making. A signal's handler may touch no more than this.
std::atomic<const char*> theTemporary{nullptr};

void removeAndEnd(int signal) {
    if (const char* const name = theTemporary.exchange(nullptr); name != nullptr)
        Platform::removeFile(name);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Returns the handler that was there. A signal that is ignored stays so.
auto handle(int signal) {
    const auto former = std::signal(signal, removeAndEnd);
    if (former == SIG_IGN)
        std::signal(signal, SIG_IGN);
    return former;
}

/// The file that a name leads to through links, whether it is there or not. What is no file (a
/// device, a pipe) stays under its name: where such a link leads may have none.
fs::path targetOf(const std::string& name) {
    constexpr int mostLinks = 40; // more are a ring
    fs::path path = name;
    std::error_code error;
    if (fs::exists(path, error) && !fs::is_regular_file(path, error))
        return path;
    for (int i = 0; i < mostLinks && fs::is_symlink(path, error); ++i)
        path = path.parent_path() / fs::read_symlink(path, error);
    return path;
}

bool isOneFile(const std::string& a, const std::string& b) {
    std::error_code error;
    if (fs::equivalent(a, b, error))
        return fs::is_regular_file(a, error); // a device may serve twice
    const auto place = [&](const std::string& name) {
        return fs::weakly_canonical(fs::absolute(targetOf(name), error), error);
    };
    return place(a) == place(b) && !fs::exists(place(a), error);
}

const char* reasonOf(FileError error) {
    switch (error) {
    case FileError::NO_SPACE:
        return ": disk full";
    case FileError::ACCESS_DENIED:
        return ": access denied";
    case FileError::NOT_FOUND:
        return ": no such folder";
    default:
        return "";
    }
}

} // namespace

OutputFile::OutputFile(const std::string& target)
    : mName(target), mTarget(targetOf(target).string()), mOnInterrupt(handle(SIGINT)),
      mOnTermination(handle(SIGTERM)) {
    try {
        std::error_code error;
        const bool exists = fs::exists(mTarget, error);
        if (exists)
            open(mTarget, Platform::OPEN_WRITE); // whether it may be written at all
        if (!exists || fs::is_regular_file(mTarget, error))
            openBeside();
    } catch (...) {
        close();
        throw;
    }
}

OutputFile::~OutputFile() {
    close();
}

void OutputFile::open(const std::string& path, unsigned int flags) {
    const FileError error = Platform::openFile(path.c_str(), flags, mDescriptor);
    if (error != FileError::NONE)
        fail(error);
}

void OutputFile::openBeside() {
    if (mDescriptor >= 0)
        Platform::closeFile(mDescriptor);
    mDescriptor = -1;
    const auto number = std::chrono::steady_clock::now().time_since_epoch().count();
    const fs::path folder = fs::path(mTarget).parent_path();
    mTemporary = (folder / (".zuno" + std::to_string(number) + ".tmp")).string();
    open(mTemporary, Platform::OPEN_WRITE | Platform::OPEN_CREATE | Platform::OPEN_EXCLUSIVE);
    theTemporary = mTemporary.c_str();
    Platform::copyAccess(mTarget.c_str(), mTemporary.c_str());
}

void OutputFile::write(std::string_view bytes) {
    constexpr std::size_t mostAtOnce = std::size_t{1} << 30U;
    while (!bytes.empty()) {
        const auto size = static_cast<std::uint32_t>(std::min(bytes.size(), mostAtOnce));
        FileError error = FileError::NONE;
        if (Platform::writeFile(mDescriptor, bytes.data(), size, error) != size)
            fail(error);
        bytes.remove_prefix(size);
    }
}

void OutputFile::commit() {
    const bool isOnDevice = mTemporary.empty() || Platform::commitFile(mDescriptor);
    const bool isClosed = Platform::closeFile(mDescriptor);
    mDescriptor = -1;
    if (!isOnDevice || !isClosed)
        fail(FileError::OTHER);
    if (mTemporary.empty())
        return;
    std::error_code error;
    fs::rename(mTemporary, mTarget, error);
    if (error)
        fail(FileError::ACCESS_DENIED);
    theTemporary = nullptr;
    mTemporary.clear();
}

void OutputFile::close() {
    if (mDescriptor >= 0)
        Platform::closeFile(mDescriptor);
    if (theTemporary.exchange(nullptr) != nullptr)
        Platform::removeFile(mTemporary.c_str());
    std::signal(SIGINT, mOnInterrupt);
    std::signal(SIGTERM, mOnTermination);
}

void OutputFile::fail(FileError error) const {
    throw std::runtime_error(mName + ": cannot be written" + reasonOf(error));
}

void saveFile(const std::string& target, std::string_view content) {
    OutputFile file(target);
    file.write(content);
    file.commit();
}

void requireApart(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs) {
    for (auto output = outputs.begin(); output != outputs.end(); ++output) {
        if (output->empty())
            continue;
        const auto isSame = [&](const std::string& other) {
            return !other.empty() && isOneFile(*output, other);
        };
        if (std::any_of(inputs.begin(), inputs.end(), isSame))
            throw std::runtime_error(*output + ": would be written over what is read");
        if (std::any_of(outputs.begin(), output, isSame))
            throw std::runtime_error(*output + ": would be written twice");
    }
}

} // namespace ZUNO::Tools
