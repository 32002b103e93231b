#include "tools/picture/picturefile.h"

#include "tools/output/outputfile.h"
#include "tools/output/wording.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ZUNO::Tools {

namespace fs = std::filesystem;

namespace {

std::string suffixOf(const std::string& fileName) {
    std::string suffix = fs::path(fileName).extension().string();
    for (char& c : suffix)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    return suffix;
}

/// A folder of this user's alone, for as long as this object lives.
class PassingFolder {
public:
    PassingFolder() {
        const auto number = std::chrono::steady_clock::now().time_since_epoch().count();
        mPath = fs::temp_directory_path() / ("zuno" + std::to_string(number));
        if (!fs::create_directory(mPath))
            throw std::runtime_error(mPath.string() + ": is there already");
        fs::permissions(mPath, fs::perms::owner_all);
    }
    ~PassingFolder() {
        std::error_code error;
        fs::remove_all(mPath, error);
    }
    PassingFolder(const PassingFolder&) = delete;
    PassingFolder& operator=(const PassingFolder&) = delete;

    std::string fileName(const char* name) const { return (mPath / name).string(); }

    /// The file's name as the system's shell takes it for one word.
    std::string word(const char* name) const {
        std::string word = "\"";
        for (const char c : (mPath / name).generic_string())
            word += (c == '"' || c == '$' || c == '`' || c == '\\' ? "\\" : "") + std::string(1, c);
        return word + '"';
    }

    std::string content(const char* name) const {
        std::ifstream file(mPath / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    fs::path mPath;
};

std::string convertToPng(const std::string& fileName, const std::string& svg) {
    const PassingFolder folder;
    saveFile(folder.fileName("in.svg"), svg);
    const std::string command = "rsvg-convert --output " + folder.word("out.png") + ' ' +
                                folder.word("in.svg") + " 2>" + folder.word("errors");
    const int status = std::system(command.c_str()); // NOLINT(cert-env33-c): all words are ours
    std::string png = folder.content("out.png");
    if (status == 0 && png.starts_with("\x89PNG"))
        return png;
    const std::string reason = folder.content("errors");
    throw std::runtime_error(
        fileName + ": a PNG is made by rsvg-convert (Debian: librsvg2-bin), which failed: " +
        shown(reason.substr(0, reason.find('\n'))));
}

} // namespace

void requirePictureName(const std::string& fileName) {
    const std::string suffix = suffixOf(fileName);
    if (!suffix.empty() && suffix != ".svg" && suffix != ".png")
        throw std::runtime_error(fileName + ": expected a name that ends in .svg or .png");
}

void savePicture(const std::string& fileName, const std::string& svg) {
    saveFile(fileName, suffixOf(fileName) == ".png" ? convertToPng(fileName, svg) : svg);
}

} // namespace ZUNO::Tools
