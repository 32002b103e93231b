#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace ZUNO::Reference {

/// The open list of the search below: whole vectors are copied and scanned where the engine keeps
/// lists. `cost(item)` tells what an item costs at the time.
class NaiveOpenList {
public:
    explicit NaiveOpenList(std::function<float(int)> cost) : f(std::move(cost)) {}

    bool isEmpty() const { return mSorted.empty() && mOverflow.empty(); }

    void push(int node) {
        if (mSorted.empty() || f(node) >= f(mSorted.back())) {
            mOverflow.push_back(node);
            return;
        }
        std::size_t place = 0;
        while (f(mSorted[place]) <= f(node))
            ++place;
        mSorted.insert(mSorted.begin() + static_cast<std::ptrdiff_t>(place), node);
    }

    void reposition(int node) {
        const auto place = std::find(mSorted.begin(), mSorted.end(), node);
        if (place == mSorted.end())
            return;
        mSorted.erase(place);
        push(node);
    }

    int popBest() {
        if (mSorted.empty())
            refill();
        const int best = mSorted.front();
        mSorted.erase(mSorted.begin());
        return best;
    }

private:
    void refill() {
        std::vector<int> rest;
        int worst = mOverflow.front();
        mSorted = {worst};
        for (std::size_t i = 1; i < mOverflow.size(); ++i) {
            const int node = mOverflow[i];
            if (mSorted.size() < 50) {
                mSorted.insert(mSorted.begin(), node);
                if (f(worst) < f(node))
                    worst = node;
            } else if (f(node) < f(worst)) {
                std::erase(mSorted, worst);
                rest.insert(rest.begin(), worst);
                mSorted.push_back(node);
                worst = mSorted.front();
                for (const int other : mSorted)
                    if (f(other) > f(worst))
                        worst = other;
            } else {
                rest.push_back(node);
            }
        }
        mOverflow = rest;
        std::stable_sort(mSorted.begin(), mSorted.end(), [&](int a, int b) { return f(a) < f(b); });
    }

    std::function<float(int)> f;
    std::vector<int> mSorted;
    std::vector<int> mOverflow;
};

/// A second, deliberately plain implementation of the search, to check the engine against.
class NaiveAStar {
public:
    struct Edge {
        int mEnd;
        float mCost;
    };
    using Graph = std::vector<std::vector<Edge>>;

    struct Result {
        int mState; ///< 0 found, 2 no path
        float mCost = 0;
        std::vector<int> mNodes = {}; ///< that the path enters
        unsigned int mExpansions = 0;
    };

    static Result search(const Graph& graph, int start, int goal,
                         const std::function<float(int)>& heuristic) {
        return NaiveAStar(graph, heuristic).run(start, goal);
    }

private:
    enum State { UNVISITED, OPEN, CLOSED };
    struct Record {
        float mF = 0;
        float mG = 0;
        int mParent = -1;
        State mState = UNVISITED;
    };

    NaiveAStar(const Graph& graph, const std::function<float(int)>& heuristic)
        : mGraph(graph), mHeuristic(heuristic), mRecords(graph.size()) {}

    float f(int node) const { return mRecords[static_cast<std::size_t>(node)].mF; }
    Record& record(int node) { return mRecords[static_cast<std::size_t>(node)]; }
    const std::vector<Edge>& edgesOf(int node) const {
        return mGraph[static_cast<std::size_t>(node)];
    }

    Result run(int start, int goal) {
        open(start, -1, 0);
        Result result{2};
        while (!mOpen.isEmpty()) {
            const int best = mOpen.popBest();
            if (best == goal) {
                result.mState = 0;
                result.mCost = f(goal);
                for (int node = goal; record(node).mParent != -1; node = record(node).mParent)
                    result.mNodes.insert(result.mNodes.begin(), node);
                return result;
            }
            ++result.mExpansions;
            for (const Edge& edge : edgesOf(best))
                visit(best, edge);
            record(best).mState = CLOSED;
        }
        return result;
    }

    void visit(int from, const Edge& edge) {
        const float g = edge.mCost + record(from).mG;
        Record& end = record(edge.mEnd);
        if (end.mState == UNVISITED) {
            open(edge.mEnd, from, g);
        } else if (g < end.mG) {
            lower(edge.mEnd, from, g);
            if (end.mState == OPEN)
                mOpen.reposition(edge.mEnd);
            else
                propagate(edge.mEnd);
        }
    }

    void open(int node, int parent, float g) {
        record(node) = {g + mHeuristic(node), g, parent, OPEN};
        mOpen.push(node);
    }

    void lower(int node, int parent, float g) {
        Record& r = record(node);
        r.mF = r.mF - r.mG + g;
        r.mG = g;
        r.mParent = parent;
    }

    void propagate(int node) {
        std::vector<int> stack{node};
        while (!stack.empty()) {
            const int from = stack.back();
            stack.pop_back();
            for (const Edge& edge : edgesOf(from)) {
                const float g = record(from).mG + edge.mCost;
                if (record(edge.mEnd).mState == UNVISITED || !(g < record(edge.mEnd).mG))
                    continue;
                lower(edge.mEnd, from, g);
                stack.push_back(edge.mEnd);
            }
        }
    }

    const Graph& mGraph;
    const std::function<float(int)>& mHeuristic;
    std::vector<Record> mRecords;
    NaiveOpenList mOpen{[this](int node) { return f(node); }};
};

} // namespace ZUNO::Reference
