#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/Throw.h"
#include "Core/private/TypeDispatch.h"
#include "PointOperations/private/AnamorphosisScalarGeneric.h"
#include "PointOperations/private/ManyPointBody.h"

#include <qel/point_operations/Anamorphosis.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace qel::point_operations {

namespace {

struct AnamorphosisScalarDispatcher
{
    template <class T> static void run(Anamorphosis* anamorphosis)
    {
        math::Vector2<double> const range = anamorphosis->inputRange;
        double const step = anamorphosis->step;
        container::Vector<double> const lut = anamorphosis->lut;
        checkTable(range, step, lut.size());
        std::vector<T> results(lut.size());
        std::transform(lut.begin(), lut.end(), results.begin(),
                       [](double result) { return helper::convertVoxel<T>(result); });
        AnamorphosisScalarGeneric<T> const kernel{rowFor<T>(range[0] == 0, step == 1),
                                                  range[0],
                                                  range[1],
                                                  step,
                                                  results.data(),
                                                  helper::convertVoxel<T>(anamorphosis->lowIntensity.get()),
                                                  helper::convertVoxel<T>(anamorphosis->highIntensity.get())};
        if constexpr (sizeof(T) == 1)
            runRows<T>(*anamorphosis, AnamorphosisOfBytes<T>(kernel));
        else
            runRows<T>(*anamorphosis, kernel);
    }

    template <class T, class Kernel> static void runRows(Anamorphosis& anamorphosis, Kernel const& kernel)
    {
        runManyPointwise<T>(anamorphosis, kernel, anamorphosis.output.get(), anamorphosis.input.get());
    }

    template <class T> static auto rowFor(bool hasNoMin, bool hasNoStep)
    {
        if (hasNoMin)
            return hasNoStep ? &anamorphosisRow<AnamorphosisOperator_NoMin_NoStepTag, T>
                             : &anamorphosisRow<AnamorphosisOperator_NoMinTag, T>;
        return hasNoStep ? &anamorphosisRow<AnamorphosisOperator_NoStepTag, T>
                         : &anamorphosisRow<AnamorphosisOperator_StandardTag, T>;
    }

    /// No voxel may be looked up behind the end of the table.
    static void checkTable(math::Vector2<double> const& range, double step, unsigned long size)
    {
        if (std::isnan(range[0]) || std::isnan(range[1]) || std::isnan(step))
            QEL_THROW(InvalidCall, "The parameters \"inputRange\" and \"step\" must be numbers.");
        if (range[1] < range[0])
            return; // every voxel is below or above
        double const last = anamorphosisIndex(AnamorphosisOperator_StandardTag(), range[1], range[0], step);
        if (last < static_cast<double>(size))
            return;
        unsigned long const most = std::numeric_limits<unsigned long>::max();
        unsigned long const needed = last < static_cast<double>(most) ? static_cast<unsigned long>(last) + 1 : most;
        QEL_THROW(InvalidCall,
                  "The parameter \"lut\" must have at least " << needed << " entries. Current size is " << size << ".");
    }
};

class ScalarAnamorphosisRunner : public ScalarRunner<Anamorphosis>
{
    void runOn(Anamorphosis& anamorphosis) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, AnamorphosisScalarDispatcher, Anamorphosis*>()(
            anamorphosis.input.get()->getVoxelType(), &anamorphosis);
    }
};

} // namespace

QEL_REGISTER_RUNNER(Anamorphosis, ScalarAnamorphosisRunner)

} // namespace qel::point_operations
