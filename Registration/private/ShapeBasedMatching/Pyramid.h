#pragma once

#include <qel/memory/InMemoryImage.h>
#include <qel/miscellaneous/Decimate2D.h>

#include <vector>

namespace qel::algorithms {
class AbstractPrivateImplementation;
}

namespace qel::registration {

/// An image, and halves of it: level 0 is the image itself, each further level has half of the columns and rows.
class Pyramid
{
public:
    /// `base` is not owned, and must outlive the pyramid.
    Pyramid(ImageModel const* base, unsigned long numLevels, miscellaneous::DecimationOp operation);

    /// Makes the levels above 0, each from the one before. False if `parent`, the composite that this is a part of or
    /// null, was cancelled; it steps on after each level.
    bool run(algorithms::AbstractPrivateImplementation* parent = nullptr);

    /// Throws BadIndex "invalid level of pyramid" where there is none.
    ImageModel const* get(unsigned long level) const;

private:
    ImageModel const* m_base;
    unsigned long m_numOfLevels;
    miscellaneous::DecimationOp m_operation;
    std::vector<memory::InMemoryImage> m_images; // from level 1 on
};

} // namespace qel::registration
