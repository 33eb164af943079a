#include "Core/private/DefineAlgorithm.h"
#include "Core/private/PointBody.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/CopyImageScalarGeneric.h"

#include <qel/point_operations/CopyImage.h>

namespace qel::point_operations {

namespace {

struct CopyImageScalarDispatcher
{
    template <class T> static void run(CopyImage* copy)
    {
        runPointwise<T, T>(*copy, copy->input, copy->output, CopyImageScalarGeneric<T>());
    }
};

class CopyImageRunner : public ScalarRunner<CopyImage>
{
    void runOn(CopyImage& copy) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, CopyImageScalarDispatcher, CopyImage*>()(
            copy.input.get()->getVoxelType(), &copy);
    }
};

} // namespace

QEL_REGISTER_RUNNER(CopyImage, CopyImageRunner)

} // namespace qel::point_operations
