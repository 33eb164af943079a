#include "Core/private/AbstractPrivateImplementation.h"
#include "Core/private/Access/ContinueBorderCondition.h"
#include "Core/private/Access/DirectionalMirrorBorderCondition.h"
#include "Core/private/Access/FixedBorderCondition.h"
#include "Core/private/Access/MirrorBorderCondition.h"
#include "Core/private/Access/Rows.h"
#include "Core/private/DefineAlgorithm.h"
#include "Core/private/Helper/convertVoxel.h"
#include "Core/private/ScalarRunner.h"
#include "Core/private/Throw.h"
#include "Core/private/TypeDispatch.h"

#include <qel/Exception.h>
#include <qel/ImageModel.h>
#include <qel/miscellaneous/BorderConditionExtrapole.h>

#include <algorithm>

namespace qel::miscellaneous {

namespace {

/// A coordinate or a size: what is far beyond any image stays just as far.
long cut(double value)
{
    constexpr double farAway = 1e15;
    return value != value ? 0 : static_cast<long>(std::clamp(value, -farAway, farAway));
}

template <class T> class BorderConditionExtrapolePrivate final : public algorithms::AbstractPrivateImplementation
{
public:
    explicit BorderConditionExtrapolePrivate(BorderConditionExtrapole& algorithm)
        : AbstractPrivateImplementation(&algorithm)
        , m_zoom(algorithm.zoomFactor)
        , m_input(access::View<T>::New(algorithm.input.get(), conditionOf(algorithm.bctype, algorithm.value)))
        , m_output(access::View<T>::New(algorithm.output.get(), access::FixedBorderCondition<T>::New(T(0))))
    {}

    void run();

private:
    static typename access::View<T>::Condition conditionOf(unsigned int type, double value)
    {
        switch (type) {
        case 0:
            return access::FixedBorderCondition<T>::New(helper::convertVoxel<T>(value));
        case 1:
            return access::ContinueBorderCondition<T>::New();
        case 2:
            return access::MirrorBorderCondition<T>::New();
        case 3:
            return access::DirectionalMirrorBorderCondition<T>::New(value);
        default:
            QEL_THROW(InvalidCall, "Invalid border condition.");
        }
    }

    double m_zoom;
    boost::shared_ptr<access::View<T>> m_input;
    boost::shared_ptr<access::View<T>> m_output;
};

template <class T> void BorderConditionExtrapolePrivate<T>::run()
{
    unsigned long const columns = m_output->numOfCols();
    unsigned long const rows = m_output->numOfRows();
    setTotalWork(columns * rows * m_input->numOfPlans() * m_input->numOfTimeSeries() * m_input->numOfSpectralSeries());
    Publication const publication(*this);

    auto const inputColumns = static_cast<double>(m_input->numOfCols());
    auto const inputRows = static_cast<double>(m_input->numOfRows());
    double const margin = (1.0 - m_zoom) * 0.5;
    long const firstColumn = cut(margin * inputColumns);
    long const firstRow = cut(margin * inputRows);
    // What lies behind the output's last column would be dropped.
    auto const width = std::min(static_cast<unsigned long>(std::max(cut(inputColumns * m_zoom), 0l)), columns);
    if (width == 0)
        return;

    auto const in = m_input->createRowCacheRead(1);
    auto const out = m_output->createRowCacheReadWrite(1);
    for (unsigned long series = 0; series < m_input->numOfSpectralSeries(); ++series)
        for (unsigned long time = 0; time < m_input->numOfTimeSeries(); ++time)
            for (unsigned long plan = 0; plan < m_input->numOfPlans(); ++plan)
                for (unsigned long row = 0; row < rows; ++row) {
                    if (isCancelled())
                        return;
                    access::RowPosition at{0, static_cast<long>(row), static_cast<long>(plan), static_cast<long>(time),
                                           static_cast<long>(series)};
                    auto& target = out->getRow(0, width, at);
                    at.column = firstColumn;
                    at.row += firstRow;
                    T const* const voxels = in->fetchRow(0, width, at).data();
                    std::copy(voxels, voxels + width, target.data());
                    target.writeRow(false, 0, 0, 0, 0, 0, 0);
                    addDoneWork(columns);
                }
    m_output->writeAllTemporizedRows();
}

struct BorderConditionExtrapoleDispatcher
{
    template <class T> static void run(BorderConditionExtrapole* algorithm)
    {
        BorderConditionExtrapolePrivate<T>(*algorithm).run();
    }
};

class ScalarBorderCondExtrapoleRunner : public ScalarRunner<BorderConditionExtrapole>
{
    void runOn(BorderConditionExtrapole& algorithm) const override
    {
        tmpl_dispatch::Visitor1Args<AllVoxelTypes, BorderConditionExtrapoleDispatcher, BorderConditionExtrapole*>()(
            algorithm.input.get()->getVoxelType(), &algorithm);
    }
};

} // namespace

QEL_REGISTER_RUNNER(BorderConditionExtrapole, ScalarBorderCondExtrapoleRunner)

} // namespace qel::miscellaneous
