#pragma once

namespace qel {

/// One check of a property of type `P`, or one adjustment of the image that it points to.
template <class P> class Rules
{
public:
    virtual ~Rules() = default;
    virtual void apply(P& property) = 0;
};

} // namespace qel
