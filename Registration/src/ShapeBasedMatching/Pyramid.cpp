#include "Registration/private/ShapeBasedMatching/Pyramid.h"

#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Throw.h"

#include <qel/Ref.h>

namespace qel::registration {

Pyramid::Pyramid(ImageModel const* base, unsigned long numLevels, miscellaneous::DecimationOp operation)
    : m_base(base)
    , m_numOfLevels(numLevels)
    , m_operation(operation)
    , m_images(numLevels > 0 ? numLevels - 1 : 0)
{}

bool Pyramid::run(algorithms::AbstractPrivateImplementation* parent)
{
    for (unsigned long level = 1; level < m_numOfLevels; ++level) {
        Ref<miscellaneous::Decimate2D> const decimation(miscellaneous::Decimate2D::New(parent));
        decimation->input = get(level - 1);
        decimation->operatorType = m_operation;
        decimation->output = &m_images[level - 1];
        decimation->run();
        if (!parent)
            continue;
        parent->removeChild();
        parent->nextStep();
        if (parent->isCancelled())
            return false;
    }
    return true;
}

ImageModel const* Pyramid::get(unsigned long level) const
{
    if (level >= m_numOfLevels)
        QEL_THROW(BadIndex, "invalid level of pyramid");
    return level == 0 ? m_base : &m_images[level - 1];
}

} // namespace qel::registration
