#include "tools/zunopath/answertext.h"

#include "tools/output/table.h"

namespace ZUNO::Tools {

using Common::Math::Vec2;
using Common::Math::Vec3;

std::string textOf(const Vec2<float>& point) {
    return numberText(point.mX) + ' ' + numberText(point.mY);
}

std::string textOf(const Vec3<float>& point) {
    return numberText(point.mX) + ' ' + numberText(point.mY) + ' ' + numberText(point.mZ);
}

std::string lengthText(double length) {
    return numberText(length) + " units";
}

std::string wayText(const char* name, const Vec3<float>& start,
                    const std::vector<Vec3<float>>& points) {
    Table table({name, "x", "y", "z", "so far, units"});
    double soFar = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Vec3<float>& point = points[i];
        soFar += static_cast<double>(length(point - (i == 0 ? start : points[i - 1])));
        table.add({std::to_string(i + 1), numberText(point.mX), numberText(point.mY),
                   numberText(point.mZ), numberText(soFar)});
    }
    return table.text();
}

} // namespace ZUNO::Tools
