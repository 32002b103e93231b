#include "navmesh/opensequence.h"

#include <algorithm>
#include <limits>

namespace ZUNO::NavMesh {

namespace {

/// What stays in a block that is split, at its worse end; the better ones go to another.
constexpr std::uint32_t keptBySplit = OpenSequence::blockEntries / 2 + 1;
/// As many entries at least go into a half before it is split again.
constexpr std::size_t entriesPerSplit = OpenSequence::blockEntries - keptBySplit;

constexpr float noCeiling = std::numeric_limits<float>::infinity();

} // namespace

/// The slow ways begin with this,
void OpenSequence::noteCount() {
    if (!mBlocks.empty())
        mBlocks[bestBlock()].mCount = static_cast<std::uint32_t>(mEnd - mBegin);
}

/// and end with this, when a block came, went or moved.
void OpenSequence::noteEnds() {
    Block& best = mBlocks[bestBlock()];
    mBegin = best.mEntries;
    mEnd = mBegin + best.mCount;
    mLimit = mRow.size() > 1 || mTellsPlaces ? mBegin : mBegin + blockEntries;
    mWorst = mBlocks[mRow.empty() ? 0 : mRow.front().mBlock].mEntries;
}

void OpenSequence::grow(std::size_t entries) {
    noteCount();
    const std::size_t used = std::max<std::size_t>(1, mRow.size());
    const std::size_t best = static_cast<std::size_t>(mEnd - mBegin);
    // each block may be full, and be split by one entry
    const std::size_t splits = used == 1 && best + entries <= blockEntries
                                   ? 0
                                   : std::min(entries, used) + entries / entriesPerSplit;
    if (splits != 0 && mRow.capacity() < used + splits)
        mRow.reserve(std::max(used + splits, 2 * mRow.capacity()));
    if (mBlocks.capacity() < used + splits)
        mBlocks.reserve(std::max(used + splits, 2 * mBlocks.capacity()));
    if (mBlocks.empty())
        mBlocks.emplace_back();
    noteEnds();
}

void OpenSequence::insertAmongMany(const OpenEntry& entry) {
    noteCount();
    std::uint32_t block = bestBlock();
    if (mRow.size() > 1 || mBlocks[block].mCount == blockEntries) {
        if (mRow.empty())
            mRow.push_back({noCeiling, 0});
        std::size_t part = partFor(entry.mF);
        if (blockOf(mRow[part]).mCount == blockEntries) {
            split(part);
            part = partFor(entry.mF);
        }
        block = mRow[part].mBlock;
    }
    put(mBlocks[block].mEntries + mBlocks[block].mCount++, entry);
    if (mTellsPlaces)
        mRecords[entry.mNode].setSequenceBlock(block);
    noteEnds();
}

/// Where the first entry from the best on lies that costs more. Ceilings that turn out to be too
/// high, since entries were lowered or left, come down.
std::size_t OpenSequence::partFor(float cost) {
    auto part = std::partition_point(mRow.begin(), mRow.end(),
                                     [=](const Part& p) { return cost < p.mCeiling; });
    const auto hasDearer = [&](const Part& p) {
        const auto entries = blockOf(p).entries();
        return std::any_of(entries.begin(), entries.end(),
                           [=](const OpenEntry& entry) { return cost < entry.mF; });
    };
    while (!hasDearer(*--part))
        part->mCeiling = cost;
    return static_cast<std::size_t>(part - mRow.begin());
}

std::size_t OpenSequence::partOf(std::uint32_t block) const {
    const auto part = std::find_if(mRow.begin(), mRow.end(),
                                   [=](const Part& each) { return each.mBlock == block; });
    return static_cast<std::size_t>(part - mRow.begin());
}

void OpenSequence::split(std::size_t part) {
    const std::uint32_t number = takeBlock();
    Block& full = blockOf(mRow[part]);
    Block& better = mBlocks[number];
    std::copy(full.mEntries + keptBySplit, full.mEntries + blockEntries, better.mEntries);
    better.mCount = blockEntries - keptBySplit;
    full.mCount = keptBySplit;
    const auto next = mRow.begin() + static_cast<std::ptrdiff_t>(part) + 1;
    float ceiling = next != mRow.end() ? next->mCeiling : -noCeiling;
    for (const OpenEntry& entry : better.entries()) {
        ceiling = ceiling < entry.mF ? entry.mF : ceiling; // NaN is no cost that an entry precedes
        if (mTellsPlaces)
            mRecords[entry.mNode].setSequenceBlock(number);
    }
    mRow.insert(next, {ceiling, number});
}

std::uint32_t OpenSequence::takeBlock() {
    if (mBlocks.size() < mBlocks.capacity()) {
        mBlocks.emplace_back();
        return static_cast<std::uint32_t>(mBlocks.size() - 1);
    }
    const auto unused = std::find_if(mBlocks.begin(), mBlocks.end(),
                                     [](const Block& block) { return block.mCount == 0; });
    return static_cast<std::uint32_t>(unused - mBlocks.begin());
}

void OpenSequence::leaveBlock() {
    if (mRow.size() <= 1)
        return;
    noteCount();
    drop(mRow.size() - 1);
    noteEnds();
}

void OpenSequence::drop(std::size_t part) {
    mRow.erase(mRow.begin() + static_cast<std::ptrdiff_t>(part));
}

void OpenSequence::beginFilling() {
    mTellsPlaces = false;
    if (!mRow.empty())
        mRow.front().mCeiling = noCeiling;
    noteCount();
    noteEnds();
}

OpenEntry* OpenSequence::findIn(Block& block, std::uint32_t node) {
    const std::span<OpenEntry> entries = block.entries();
    const auto place = std::find_if(entries.rbegin(), entries.rend(),
                                    [=](const OpenEntry& entry) { return entry.mNode == node; });
    return place != entries.rend() ? &*place : nullptr;
}

OpenEntry* OpenSequence::find(std::uint32_t node) {
    noteCount();
    if (mTellsPlaces) {
        const std::uint32_t block = mRecords[node].sequenceBlock();
        return block < mBlocks.size() ? findIn(mBlocks[block], node) : nullptr;
    }
    if (mRow.empty())
        return findIn(mBlocks.front(), node);
    for (std::size_t part = mRow.size(); part-- != 0;)
        if (OpenEntry* const entry = findIn(blockOf(mRow[part]), node); entry != nullptr)
            return entry;
    return nullptr;
}

std::uint32_t OpenSequence::blockWith(const OpenEntry* entry) const {
    const auto distance = reinterpret_cast<const std::byte*>(entry) -
                          reinterpret_cast<const std::byte*>(mBlocks.data());
    return static_cast<std::uint32_t>(static_cast<std::size_t>(distance) / sizeof(Block));
}

void OpenSequence::erase(OpenEntry* entry) {
    noteCount();
    const std::uint32_t number = blockWith(entry);
    Block& block = mBlocks[number];
    std::copy(entry + 1, block.mEntries + block.mCount, entry);
    if (--block.mCount == 0 && mRow.size() > 1)
        drop(partOf(number));
    noteEnds();
}

/// A saving may raise a node's whole cost, by rounding.
void OpenSequence::setCost(OpenEntry* entry, float cost) {
    const bool isRaised = entry->mF < cost;
    entry->mF = cost;
    if (!isRaised || mRow.empty())
        return;
    for (std::size_t part = partOf(blockWith(entry)) + 1;
         part-- != 0 && mRow[part].mCeiling < cost;)
        mRow[part].mCeiling = cost;
}

void OpenSequence::tellPlaces() {
    mTellsPlaces = true;
    noteCount();
    for (std::uint32_t block = 0; block < mBlocks.size(); ++block)
        for (const OpenEntry& entry : mBlocks[block].entries())
            mRecords[entry.mNode].setSequenceBlock(block);
    noteEnds();
}

void OpenSequence::clear() {
    if (mBlocks.empty())
        return;
    noteCount();
    for (const Part& part : mRow)
        blockOf(part).mCount = 0;
    mRow.clear();
    mBlocks.front().mCount = 0;
    mTellsPlaces = false;
    noteEnds();
}

} // namespace ZUNO::NavMesh
