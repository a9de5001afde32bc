// A program outside the project, on the installed headers and libraries only.

#include <QORVAncdoe.h>

#include <iostream>

namespace {

class ThreeTemperatures : public Factors {
  public:
    unsigned int GetDesignFactorCount() const override { return 3; }
    CEType::EType GetFactorType(int) const override { return CEType::Quantitative; }
    std::vector<float> GetFactorSettings(int) const override { return {150, 180}; }
    unsigned int GetLevelCount(int) const override { return 0; }
    void SetFactorRange(int, float, float) override {}
    const TransformStruct* GetFactorTransform(int) const override { return nullptr; }
    bool HasFiller() const override { return false; }
    bool IsFormulationSumFree() const override { return false; }
    float GetConstantMixtureShare() const override { return 0; }
};

}  // namespace

int main() {
    const ThreeTemperatures factors;
    const auto builder = AllDesigns::GetDesignBuilder(EDesign::FF2, "");
    const DesignOptions options(*builder, factors);
    const auto matrix = builder->Build(factors, options)->GetDesignMatrix();
    std::cout << matrix->SizeRows() << " runs of " << matrix->SizeColumns()
              << " factors, the last at";
    for (int factor = 0; factor < 3; ++factor) {
        const float coded = (*matrix)(matrix->SizeRows(), factor + 1);
        std::cout << ' ' << factors.FromCoded(factor, coded, false);
    }
    std::cout << '\n';
}
