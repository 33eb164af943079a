#pragma once

#include "Core/private/AbstractPrivateImplementation.h"

#include <memory>

namespace qel::classification {

class TextureClassificationModel;
class TextureClassificationStandalone;

/// The running side of the standalone form: one algorithm after the other, with a model between them that nobody else
/// sees.
class TextureClassificationStandalonePrivate final : public algorithms::AbstractPrivateImplementation
{
public:
    explicit TextureClassificationStandalonePrivate(TextureClassificationStandalone& standalone);
    void run();

private:
    unsigned int countClasses();
    std::unique_ptr<TextureClassificationModel> createModel(unsigned int numOfClasses);
    bool settleRangesOf(TextureClassificationModel& model);
    void train(TextureClassificationModel& model);
    void apply(TextureClassificationModel const& model);

    TextureClassificationStandalone& m_standalone;
};

} // namespace qel::classification
