#pragma once

#include "Core/private/Rules/Rules.h"
#include "Core/private/Throw.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace qel {

/// The image must have one of the listed voxel types.
template <class P> class RuleAssertType : public Rules<P>
{
public:
    explicit RuleAssertType(std::vector<VoxelTypes> types)
        : types_(std::move(types))
    {}

    void apply(P& property) override
    {
        ImageModel const* const image = property.get();
        if (!image)
            return;
        VoxelTypes const type = image->getVoxelType();
        if (std::find(types_.begin(), types_.end(), type) != types_.end())
            return;
        ClassicStream list;
        char const* separator = "";
        for (VoxelTypes const listed : types_) {
            list << separator << helper::VoxelTypesToString(listed);
            separator = ", ";
        }
        QEL_THROW(RuleException, "The parameter \""
                                     << property.getName() << "\" supports only data type(s): " << list.text()
                                     << ". Current data type is " << helper::VoxelTypesToString(type) << ".");
    }

private:
    std::vector<VoxelTypes> types_;
};

} // namespace qel
