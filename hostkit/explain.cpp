#include "hostkit/explain.h"

#include "common/report/reporttext.h"
#include "hostkit/strait.h"

namespace ZUNO::HostKit {

namespace {

/// Calls `visitor(node)` for each node that neighbours lead to, beginning with the first itself,
/// as long as it returns true.
template <typename Visitor>
void visitReachable(const MeshView& view, std::uint32_t first, Visitor visitor) {
    std::vector<bool> isKnown(view.nodeCount());
    std::vector<std::uint32_t> waiting{first};
    isKnown[first] = true;
    while (!waiting.empty()) {
        const std::uint32_t node = waiting.back();
        waiting.pop_back();
        if (!visitor(node))
            return;
        for (const MeshView::Link& link : view.linksOf(node))
            if (!isKnown[link.mTarget]) {
                isKnown[link.mTarget] = true;
                waiting.push_back(link.mTarget);
            }
    }
}

Explanation::End lookAt(const MeshView& view, const Position& point) {
    constexpr float anyDistance = std::numeric_limits<float>::infinity();
    Explanation::End end;
    end.mPoint = point;
    end.mNode = view.findNode(point);
    end.mFloor = findGround(view, point);
    if (end.mFloor)
        end.mAbove = static_cast<float>(view.heightOf(point) - view.heightOf(end.mFloor.mPosition));
    end.mNearest = findNearest(view, point, anyDistance, anyDistance);
    if (end.mNode != NO_NODE) {
        end.mIsland = view.islandOf(end.mNode);
        end.mIslandSize = view.islandSizes()[end.mIsland];
    }
    return end;
}

/// Sentences about points, numbers in six digits. They fit into a text that takes no memory.
class Sentences {
public:
    explicit Sentences(const MeshView& view) : mView(view) {}

    void tellOf(const char* name, const Explanation::End& end) {
        mText << "The " << name << " ";
        tellPoint(end.mPoint);
        if (end.mNode != NO_NODE) {
            mText << " stands on node " << end.mNode << " of island " << end.mIsland
                  << ", which has " << end.mIslandSize
                  << (end.mIslandSize == 1 ? " node.\n" : " nodes.\n");
            return;
        }
        mText << " stands on no node";
        if (!isFinite(end.mPoint))
            mText << ": it is not finite";
        else if (end.mFloor)
            tellFloor(end);
        else
            mText << ": there is no ground above or below it";
        mText << ".\n";
        if (end.mNearest) {
            mText << "The nearest place is ";
            tellPoint(end.mNearest.mPosition);
            mText << " on node " << end.mNearest.mNode << ", " << end.mNearest.mDistance
                  << " away.\n";
        }
    }
    void tellShores(const Explanation& explanation) {
        mText << "No neighbours connect the two islands. They come nearest at ";
        tellPoint(explanation.mStartShore.mPosition);
        mText << " and ";
        tellPoint(explanation.mGoalShore.mPosition);
        mText << ", " << explanation.mGap << " apart.\n";
    }
    void tell(const char* sentence) { mText << sentence << '\n'; }
    std::string text() const { return mText.text(); }

private:
    void tellPoint(const Position& p) {
        mText << '(' << p.mX << ", " << p.mY << ", " << p.mZ << ')';
    }
    void tellFloor(const Explanation::End& end) {
        mText << ": it is " << std::abs(end.mAbove) << (end.mAbove < 0 ? " below" : " above")
              << " the ground of node " << end.mFloor.mNode << ", on which one stands from "
              << mView.reachBelow() << " below its first corner to "
              << mView.reachAbove(end.mFloor.mNode) << " above it";
    }

    const MeshView& mView;
    Common::Debug::ReportText mText;
};

} // namespace

Explanation explain(const MeshView& view, const Position& start, const Position& goal) {
    using Answer = Explanation::Answer;
    Explanation explanation;
    explanation.mStart = lookAt(view, start);
    explanation.mGoal = lookAt(view, goal);
    if (explanation.mStart.mNode == NO_NODE || explanation.mGoal.mNode == NO_NODE) {
        explanation.mAnswer = Answer::OFF_MESH;
    } else if (explanation.mStart.mIsland != explanation.mGoal.mIsland) {
        explanation.mAnswer = Answer::OTHER_ISLAND;
        const Strait strait =
            findStrait(view, explanation.mStart.mIsland, explanation.mGoal.mIsland);
        explanation.mStartShore = strait.mFrom;
        explanation.mGoalShore = strait.mTo;
        explanation.mGap = strait.mGap;
    } else {
        explanation.mAnswer = Answer::ONLY_ONE_WAY;
        visitReachable(view, explanation.mStart.mNode, [&](std::uint32_t node) {
            if (node == explanation.mGoal.mNode)
                explanation.mAnswer = Answer::POSSIBLE;
            return node != explanation.mGoal.mNode;
        });
    }
    return explanation;
}

std::string describe(const MeshView& view, const Explanation& explanation) {
    Sentences sentences(view);
    sentences.tellOf("start", explanation.mStart);
    sentences.tellOf("goal", explanation.mGoal);
    switch (explanation.mAnswer) {
    case Explanation::Answer::POSSIBLE:
        sentences.tell("A path leads from the start to the goal.");
        break;
    case Explanation::Answer::OFF_MESH:
        break;
    case Explanation::Answer::OTHER_ISLAND:
        sentences.tellShores(explanation);
        break;
    case Explanation::Answer::ONLY_ONE_WAY:
        sentences.tell("Some neighbours between the two lead one way only: no path leads from the "
                       "start to the goal.");
        break;
    }
    return sentences.text();
}

NearestPlace findNearestReachable(const MeshView& view, const Position& start,
                                  const Position& goal) {
    NearestPlace found;
    const std::uint32_t first = view.findNode(start);
    if (first == NO_NODE || !isFinite(goal))
        return found;
    double nearest = std::numeric_limits<double>::infinity();
    visitReachable(view, first, [&](std::uint32_t node) {
        const Place there = settle(view, node, nearestInNode(view, node, view.planeOf(goal)));
        const double away = squareDistance(there.mPosition, goal);
        if (there && (away < nearest || (away == nearest && node < found.mNode))) {
            nearest = away;
            static_cast<Place&>(found) = there;
        }
        return true;
    });
    found.mDistance = found ? static_cast<float>(std::sqrt(nearest)) : 0;
    return found;
}

} // namespace ZUNO::HostKit
