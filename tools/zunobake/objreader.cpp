#include "tools/zunobake/scene.h"

#include "common/utility/floatchars.h"
#include "tools/output/wording.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace ZUNO::Tools {

namespace {

/// Whether a word is a finite number in decimal digits. It must stand in a text that ends with a
/// zero.
bool isNumber(std::string_view word, float& number) {
    const bool isNegative = word.starts_with('-');
    const std::string_view digits = word.substr(isNegative ? 1 : 0);
    constexpr std::string_view allowed = "0123456789.eE+-";
    if (digits.find_first_not_of(allowed) != std::string_view::npos || digits.starts_with('-') ||
        digits.starts_with('+'))
        return false;
    const char* const wordEnd = word.data() + word.size();
    const auto [end, error] = Common::Utility::floatFromChars(digits.data(), wordEnd, number, 10);
    if (error != std::errc() || end != wordEnd)
        return false;
    if (isNegative)
        number = -number;
    return std::isfinite(number);
}

/// Reads one file, line by line, into a scene.
class ObjReader {
public:
    ObjReader(std::istream& file, const std::string& name, const SceneOptions& options,
              Scene& scene)
        : mFile(file), mName(name), mOptions(options), mScene(scene),
          mFirstVertex(scene.mVertices.size() / 3) {}

    void read(std::size_t size, const ReadListener& listener) {
        std::string line;
        while (readStatement(line)) {
            readLine(line);
            constexpr std::size_t linesBetweenWords = 50000;
            if (listener && mLine % linesBetweenWords == 0)
                listener(static_cast<std::size_t>(mFile.tellg()), size);
        }
        if (mFile.bad())
            throw std::runtime_error(mName + ": cannot be read");
        if (mFaceCount == 0)
            throw std::runtime_error(mName + ": no faces");
    }

private:
    /// Cutting a face into triangles takes time by its corners' number to the third.
    static constexpr std::size_t maxCorners = 512;

    /// A line, and those that it goes on in.
    bool readStatement(std::string& line) {
        if (!std::getline(mFile, line))
            return false;
        ++mLine;
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        if (mLine == 1 && line.starts_with(byteOrderMark))
            line.erase(0, byteOrderMark.size());
        for (std::string rest; chop(line), line.ends_with('\\') && std::getline(mFile, rest);) {
            line.back() = ' ';
            line += rest;
            ++mLine;
        }
        return true;
    }
    static void chop(std::string& line) {
        if (line.ends_with('\r'))
            line.pop_back();
    }

    void readLine(std::string_view line) {
        mRest = line.substr(0, line.find('#'));
        const std::string_view keyword = nextWord();
        if (keyword == "v")
            readVertex();
        else if (keyword == "f")
            readFace();
        else if (keyword == "usemtl")
            readMaterial();
        else if (keyword == "g" || keyword == "o")
            readGroups();
    }

    std::string_view nextWord() {
        constexpr std::string_view blanks = " \t";
        const std::size_t begin = std::min(mRest.find_first_not_of(blanks), mRest.size());
        const std::size_t end = std::min(mRest.find_first_of(blanks, begin), mRest.size());
        const std::string_view word = mRest.substr(begin, end - begin);
        mRest.remove_prefix(end);
        return word;
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw std::runtime_error(mName + ':' + std::to_string(mLine) + ": " + what);
    }

    void readVertex() {
        float position[3];
        for (float& coordinate : position) {
            const std::string_view word = nextWord();
            if (word.empty())
                fail("a vertex needs three coordinates");
            if (!isNumber(word, coordinate))
                fail("coordinate '" + shown(word) + "' is no finite number");
        }
        if (mOptions.mUp == UpAxis::Z) {
            std::swap(position[1], position[2]);
            position[2] = 0.0F - position[2];
        }
        mScene.mVertices.insert(mScene.mVertices.end(), position, position + 3);
    }

    void readMaterial() {
        mMaterial = nextWord();
        mIsMaterialLeftOut = mScene.isLeftOut(mMaterial, mOptions);
        chooseSurface();
    }

    void readGroups() {
        mIsLeftOut = false;
        mMark.clear();
        for (std::string_view word = nextWord(); !word.empty(); word = nextWord()) {
            const std::string name(word);
            mIsLeftOut = mScene.isLeftOut(name, mOptions) || mIsLeftOut;
            if (mScene.isMarked(name, mOptions))
                mMark = name;
        }
        chooseSurface();
    }

    void chooseSurface() {
        const bool isMarked = !mMark.empty();
        mSurface = mScene.surfaceFor(isMarked ? mMark : mMaterial, isMarked, mOptions);
    }

    void readFace() {
        mFace.clear();
        for (std::string_view word = nextWord(); !word.empty(); word = nextWord())
            mFace.push_back(readCorner(word.substr(0, word.find('/'))));
        if (mFace.size() > maxCorners)
            fail("a face has " + std::to_string(mFace.size()) + " corners; at most " +
                 std::to_string(maxCorners) + " are taken");
        ++mFaceCount;
        if (mIsLeftOut || mIsMaterialLeftOut) {
            ++mScene.mLeftOut;
            return;
        }
        mPositions.clear();
        for (const int vertex : mFace) {
            const float* const position = &mScene.mVertices[static_cast<std::size_t>(vertex) * 3];
            mPositions.insert(mPositions.end(), position, position + 3);
        }
        const std::vector<int> triangles = triangulate(mPositions);
        if (triangles.empty())
            return skipDegenerate();
        for (std::size_t i = 0; i < triangles.size(); i += 3)
            addTriangle(triangles[i], triangles[i + 1], triangles[i + 2]);
    }

    void skipDegenerate() {
        if (!mOptions.mSkipsDegenerate)
            fail("face without area; --skip-degenerate leaves such faces out");
        ++mScene.mLeftOut;
    }

    void addTriangle(int a, int b, int c) {
        const auto vertex = [&](int corner) { return mFace[static_cast<std::size_t>(corner)]; };
        const auto add = [&](int first, int second, int third) {
            if (mScene.triangleCount() >= std::numeric_limits<int>::max() / 3)
                fail("too many triangles");
            mScene.mTriangles.insert(mScene.mTriangles.end(),
                                     {vertex(first), vertex(second), vertex(third)});
            mScene.mSurfaces.push_back(mSurface);
        };
        add(a, b, c);
        if (mOptions.mTakesBothSides)
            add(a, c, b);
    }

    /// The scene's vertex that a corner names: counted from 1 in this file, or back from the last.
    int readCorner(std::string_view word) const {
        const auto count = static_cast<std::int64_t>(mScene.mVertices.size() / 3 - mFirstVertex);
        std::int64_t number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error != std::errc() || end != word.data() + word.size())
            fail("corner '" + shown(word) + "' is no vertex number");
        const std::int64_t index = number < 0 ? count + number : number - 1;
        if (index < 0 || index >= count)
            fail("corner " + std::to_string(number) + " is out of range: " + std::to_string(count) +
                 " vertices so far");
        return static_cast<int>(static_cast<std::int64_t>(mFirstVertex) + index);
    }

    std::istream& mFile;
    const std::string& mName;
    const SceneOptions& mOptions;
    Scene& mScene;
    std::size_t mFirstVertex;
    std::size_t mLine = 0;
    std::size_t mFaceCount = 0;
    std::string_view mRest;
    std::uint16_t mSurface = Scene::noSurface;
    bool mIsLeftOut = false;
    bool mIsMaterialLeftOut = false;
    std::string mMaterial;
    std::string mMark; ///< the name of the group that is a surface type of its own
    std::vector<int> mFace;
    std::vector<float> mPositions;
};

} // namespace

void readObj(std::istream& file, std::size_t size, const std::string& name,
             const SceneOptions& options, Scene& scene, const ReadListener& listener) {
    ObjReader(file, name, options, scene).read(size, listener);
}

void readObj(const std::string& fileName, const SceneOptions& options, Scene& scene,
             const ReadListener& listener) {
    std::ifstream file(fileName, std::ios::binary);
    if (!file)
        throw std::runtime_error(fileName + ": cannot be opened; expected a Wavefront OBJ");
    std::error_code unknown;
    const auto size = static_cast<std::size_t>(std::filesystem::file_size(fileName, unknown));
    readObj(file, size, fileName, options, scene, unknown ? ReadListener() : listener);
}

} // namespace ZUNO::Tools
