#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/InvertImageScalarGeneric.h"

#include <qel/point_operations/InvertImage.h>

#include <algorithm>

namespace qel::point_operations {

namespace {

template <class T> T maskOfLowBits(unsigned int bits) { return bits == 0 ? T(0) : static_cast<T>(~0ul >> (64 - bits)); }

struct InvertImageScalarDispatcher
{
    template <class T> static void run(InvertImage* invert)
    {
        bool const isBinary = invert->input.get()->getInterpretation() == QEL_BINARY;
        unsigned int const width = 8 * sizeof(T);
        unsigned int const bits = isBinary ? 1 : std::min(invert->numOfBits.get(), width);
        runPointwise<T, T>(*invert, invert->input, invert->output, InvertImageScalarGeneric<T>{maskOfLowBits<T>(bits)});
    }
};

class ScalarInvertImageRunner : public ScalarRunner<InvertImage>
{
    void runOn(InvertImage& invert) const override
    {
        tmpl_dispatch::Visitor1Args<IntegerVoxelTypes, InvertImageScalarDispatcher, InvertImage*>()(
            invert.input.get()->getVoxelType(), &invert);
    }
};

} // namespace

QEL_REGISTER_RUNNER(InvertImage, ScalarInvertImageRunner)

} // namespace qel::point_operations
