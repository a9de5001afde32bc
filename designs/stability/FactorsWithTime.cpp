#include "designs/stability/FactorsWithTime.h"

std::vector<float> FactorsWithTime::GetFactorSettings(int factor) const {
    if (factor != 0) {
        return factors_->GetFactorSettings(factor - 1);
    }
    std::vector<float> points;
    for (int point = 1; point <= timeCount_; ++point) {
        points.push_back(static_cast<float>(point));
    }
    return points;
}
