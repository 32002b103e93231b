#pragma once

#include "common/platform/files.h"

#include <string>
#include <string_view>
#include <vector>

namespace ZUNO::Tools {

/// A file that is written beside its target and takes the target's place when it is whole and on
/// the device. Until then the target stays as it was; the new file goes when this object ends
/// without `commit`, and when the process is interrupted (SIGINT, SIGTERM).
/// A target that is a link stays one, and the file it leads to is replaced. The new file has the
/// old one's permissions and, where that is allowed, its owner; a file that is not to be written is
/// not replaced. Other hard links keep the old content. What is no regular file (a device, a pipe)
/// is written in place.
/// Thread: one output in the making at a time in a process.
class OutputFile {
public:
    /// Throws a std::runtime_error with the target's name when it can't be written.
    explicit OutputFile(const std::string& target);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Throws a std::runtime_error for anything that the system did not take, a full disk above
    /// all.
    void write(std::string_view bytes);
    /// Puts the file in the target's place. Throws like `write`; the target is then as it was.
    void commit();

private:
    [[noreturn]] void fail(Common::Platform::FileError error) const;
    void open(const std::string& path, unsigned int flags);
    void openBeside();
    void close();

    std::string mName;         ///< as it was given, for messages
    std::string mTarget;       ///< what a link leads to
    std::string mTemporary;    ///< empty when the target is written in place
    int mDescriptor = -1;      ///< negative while closed
    void (*mOnInterrupt)(int); ///< the handlers before
    void (*mOnTermination)(int);
};

/// Writes a whole file. Throws a std::runtime_error; the target is then as it was.
void saveFile(const std::string& target, std::string_view content);

/// Throws a std::runtime_error when an output would replace an input or another output, by its name
/// or through a link. Empty names are none.
void requireApart(const std::vector<std::string>& inputs, const std::vector<std::string>& outputs);

} // namespace ZUNO::Tools
