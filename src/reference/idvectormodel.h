#pragma once

#include "common/container/idvector.h"

#include <map>
#include <vector>

namespace ZUNO::Reference {

/// An id vector beside its model: a map, and a stack of the ids that were freed.
class IDVectorModel {
public:
    explicit IDVectorModel(const Common::SharedPtr<Common::Memory::Allocator>& allocator)
        : mVector(allocator) {}

    /// Changes both as `choices` has it (`goesOn()`, `below(count)`). Returns the first difference
    /// in words, and null when there is none.
    /// Reports what removing an id reports that names nothing.
    template <typename Choices>
    const char* compare(Choices& choices) {
        while (mDifference == nullptr && choices.goesOn()) {
            const auto id = static_cast<std::uint32_t>(choices.below(mModel.size() + 4));
            const std::size_t action = choices.below(256);
            if (action == 0)
                clear();
            else if (action < 96)
                remove(id);
            else
                insert(static_cast<int>(choices.below(1000)));
            expect(mVector.isValidID(id) == mModel.contains(id), "valid ids differ");
            expect((mVector.find(id) != nullptr) == mModel.contains(id), "found ids differ");
            compareElements();
        }
        return mDifference;
    }

private:
    using Element = std::vector<int>; ///< owns memory, so that a lost or doubled one is noticed

    void insert(int value) {
        const std::uint32_t id = mVector.insert(Element{value});
        expect(id == (mFreed.empty() ? mModel.size() : mFreed.back()),
               "not the id that was freed last, or the next new one");
        if (!mFreed.empty())
            mFreed.pop_back();
        mModel[id] = value;
    }
    void remove(std::uint32_t id) {
        mVector.remove(id);
        if (mModel.erase(id) != 0)
            mFreed.push_back(id);
    }
    void clear() {
        mVector.clear();
        mModel.clear();
        mFreed.clear();
    }
    void compareElements() {
        expect(mVector.size() == mModel.size(), "sizes differ");
        auto expected = mModel.begin();
        for (auto place = mVector.begin(); place != mVector.end() && expected != mModel.end();
             ++place, ++expected) {
            const Element& element = *place;
            expect(place.getID() == expected->first && element.size() == 1 &&
                       element.front() == expected->second,
                   "elements differ, or their order");
        }
        expect(expected == mModel.end(), "an element is missing");
    }
    void expect(bool holds, const char* difference) {
        if (!holds && mDifference == nullptr)
            mDifference = difference;
    }

    Common::Container::IDVector<Element> mVector;
    std::map<std::uint32_t, int> mModel;
    std::vector<std::uint32_t> mFreed; ///< the last one is given first
    const char* mDifference = nullptr;
};

} // namespace ZUNO::Reference
