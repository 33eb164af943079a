#pragma once

#include "Core/private/AbstractPartitionerPolicy.h"

namespace qel {

/// Grains of one's own: for frames whose blocks are always cut down to the grain.
class PartitionerInfoFixed : public AbstractPartitionerPolicy
{
public:
    PartitionerInfoFixed(unsigned long cols, unsigned long rows, unsigned long plans)
        : m_cols(cols)
        , m_rows(rows)
        , m_plans(plans)
    {}
    void getPartitionerGrainSizes(PartitionerGrainSizes& sizes, access::Region const&) const override
    {
        sizes = {m_cols, m_rows, m_plans, 1, 1};
    }

private:
    unsigned long m_cols;
    unsigned long m_rows;
    unsigned long m_plans;
};

} // namespace qel
