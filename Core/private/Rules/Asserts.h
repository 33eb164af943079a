#pragma once

// What an algorithm's init() pushes on its properties: function objects, called with a property. The ones on images are
// compiled in one unit, so that an algorithm's unit sees none of their rules.

#include "Core/private/Declare.h"
#include "Core/private/Rules/ImageReference.h"
#include "Core/private/Rules/RuleAssertContainerNoEmpty.h"
#include "Core/private/Rules/RuleAssertContainerSize.h"
#include "Core/private/Rules/RuleAssertPositiveOnly.h"
#include "Core/private/Rules/RuleCompare.h"
#include "Core/private/Rules/RuleInRange.h"
#include "Core/private/Rules/RuleIsAnEnumOfType.h"
#include "Core/private/Rules/RuleLimitedValue.h"

#include <qel/Components.h>
#include <qel/Interpretations.h>
#include <qel/VoxelTypes.h>

#include <initializer_list>
#include <vector>

class EnumInfo;

namespace qel {

namespace detail {

/// Refuses a reference that was made from a null pointer.
ImageReference const& required(ImageReference const& reference);

/// A list of rules takes its new rule; the list owns it.
template <class T> void push(Property<T>& property, Rules<Property<T>>* rule)
{
    pushRule<T>(property, boost::shared_ptr<Rules<Property<T>>>(rule));
}

} // namespace detail

// Checks of images.

class AddRuleAssertType
{
public:
    explicit AddRuleAssertType(std::initializer_list<VoxelTypes> types)
        : types_(types)
    {}
    void operator()(Property<ImageModel const*>& property) const;
    void operator()(Property<ImageModel*>& property) const;

private:
    std::vector<VoxelTypes> types_;
};

class AddRuleAssertInterpretation
{
public:
    explicit AddRuleAssertInterpretation(std::initializer_list<Interpretations> interpretations)
        : interpretations_(interpretations)
    {}
    void operator()(Property<ImageModel const*>& property) const;
    void operator()(Property<ImageModel*>& property) const;

private:
    std::vector<Interpretations> interpretations_;
};

class AddRuleAssertDimension
{
public:
    AddRuleAssertDimension(Components component, unsigned long size)
        : component_(component)
        , size_(size)
    {}
    void operator()(Property<ImageModel const*>& property) const;
    void operator()(Property<ImageModel*>& property) const;

private:
    Components component_;
    unsigned long size_;
};

class AddRuleAssertDimensionImage
{
public:
    /// Up to four axes of Components; at least one.
    explicit AddRuleAssertDimensionImage(ImageReference const& reference, unsigned int component1 = -1,
                                         unsigned int component2 = -1, unsigned int component3 = -1,
                                         unsigned int component4 = -1)
        : reference_(detail::required(reference))
        , components_{component1, component2, component3, component4}
    {}
    void operator()(Property<ImageModel const*>& property) const;
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference reference_;
    unsigned int components_[4];
};

class AddRuleAssertSameSize
{
public:
    explicit AddRuleAssertSameSize(ImageReference const& other, bool withCalibration = false)
        : other_(detail::required(other))
        , withCalibration_(withCalibration)
    {}
    void operator()(Property<ImageModel const*>& property) const;
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference other_;
    bool withCalibration_;
};

class AddRuleAssertSameType
{
public:
    explicit AddRuleAssertSameType(ImageReference const& other)
        : other_(detail::required(other))
    {}
    void operator()(Property<ImageModel const*>& property) const;
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference other_;
};

namespace detail {

template <VoxelTypes... types> struct AssertTypes
{
    template <class T> void operator()(Property<T>& property) const { AddRuleAssertType({types...})(property); }
};

template <Interpretations... interpretations> struct AssertInterpretations
{
    template <class T> void operator()(Property<T>& property) const
    {
        AddRuleAssertInterpretation({interpretations...})(property);
    }
};

} // namespace detail

inline constexpr detail::AssertTypes<QEL_UINT8, QEL_UINT16, QEL_UINT32, QEL_UINT64, QEL_INT8, QEL_INT16, QEL_INT32,
                                     QEL_INT64>
    ASSERT_INTEGER{};
inline constexpr detail::AssertTypes<QEL_FLOAT32, QEL_FLOAT64> ASSERT_FLOATING{};
inline constexpr detail::AssertTypes<QEL_UINT8, QEL_UINT16, QEL_UINT32, QEL_UINT64, QEL_INT8, QEL_INT16, QEL_INT32,
                                     QEL_INT64, QEL_FLOAT32, QEL_FLOAT64>
    ASSERT_INTEGER_OR_FLOATING{};
inline constexpr detail::AssertTypes<QEL_UINT8, QEL_UINT16, QEL_INT8, QEL_INT16> ASSERT_BINARY_TYPE{};

inline constexpr detail::AssertInterpretations<QEL_BINARY> ASSERT_BINARY{};
inline constexpr detail::AssertInterpretations<QEL_LABEL> ASSERT_LABEL{};
inline constexpr detail::AssertInterpretations<QEL_VALUE> ASSERT_VALUE{};
inline constexpr detail::AssertInterpretations<QEL_BINARY, QEL_VALUE> ASSERT_BINARY_OR_VALUE{};
inline constexpr detail::AssertInterpretations<QEL_BINARY, QEL_LABEL> ASSERT_LABEL_OR_BINARY{};

// Adjustments of output images.

class AddRuleEnforceType
{
public:
    explicit AddRuleEnforceType(VoxelTypes type)
        : type_(type)
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    VoxelTypes type_;
};

/// Stands before the rule that gives an output its type.
class AddRuleKeepInputType
{
public:
    AddRuleKeepInputType(ImageReference const& input, VoxelTypes type)
        : input_(detail::required(input))
        , model_(input)
        , type_(type)
    {}
    /// The output takes the type of `model`.
    AddRuleKeepInputType(ImageReference const& input, ImageReference const& model)
        : input_(detail::required(input))
        , model_(detail::required(model))
        , takesTypeOfModel_(true)
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference input_;
    ImageReference model_;
    VoxelTypes type_ = QEL_UINT8;
    bool takesTypeOfModel_ = false;
};

class AddRuleEnforceInterpretation
{
public:
    explicit AddRuleEnforceInterpretation(Interpretations interpretation)
        : interpretation_(interpretation)
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    Interpretations interpretation_;
};

class AddRuleSetInterpretation
{
public:
    explicit AddRuleSetInterpretation(Interpretations interpretation)
        : interpretation_(interpretation)
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    Interpretations interpretation_;
};

class AddRuleEnforceSameType
{
public:
    explicit AddRuleEnforceSameType(ImageReference const& reference)
        : reference_(detail::required(reference))
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference reference_;
};

class AddRuleEnforceSameSizeAndCalibration
{
public:
    explicit AddRuleEnforceSameSizeAndCalibration(ImageReference const& reference)
        : reference_(detail::required(reference))
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference reference_;
};

class AddRuleEnforceSameSizeCalibrationAndType
{
public:
    explicit AddRuleEnforceSameSizeCalibrationAndType(ImageReference const& reference)
        : reference_(detail::required(reference))
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference reference_;
};

class AddRuleEnforceSameInterpretation
{
public:
    explicit AddRuleEnforceSameInterpretation(ImageReference const& reference)
        : reference_(detail::required(reference))
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference reference_;
};

class AddRuleEnforceTypePromotionImageImage
{
public:
    /// `mode`: one of rules::PromotionMode.
    AddRuleEnforceTypePromotionImageImage(ImageReference const& first, ImageReference const& second, unsigned int mode)
        : first_(detail::required(first))
        , second_(detail::required(second))
        , mode_(mode)
    {}
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference first_;
    ImageReference second_;
    unsigned int mode_;
};

class AddRuleEnforceTypePromotionImageValue
{
public:
    /// `mode`: one of rules::PromotionMode.
    AddRuleEnforceTypePromotionImageValue(ImageReference const& image, Property<double> const* value,
                                          unsigned int mode);
    void operator()(Property<ImageModel*>& property) const;

private:
    ImageReference image_;
    Property<double> const* value_;
    unsigned int mode_;
};

// Checks of values.

struct AssertPositiveOnly
{
    template <class T> void operator()(Property<T>& property) const
    {
        detail::push<T>(property, new RuleAssertPositiveOnly<Property<T>>);
    }
};
inline constexpr AssertPositiveOnly ASSERT_POSITIVE_ONLY{};

/// Takes the property's type for the limit: `AddRuleLimitedValue(0, LIMIT_GREATER)` suits a double too.
template <class L> class AddRuleLimitedValue
{
public:
    AddRuleLimitedValue(L limit, unsigned int kind)
        : limit_(limit)
        , kind_(kind)
    {}
    template <class T> void operator()(Property<T>& property) const
    {
        detail::push<T>(property, new RuleLimitedValue<T>(static_cast<T>(limit_), kind_));
    }

private:
    L limit_;
    unsigned int kind_;
};

template <class T> class AddRuleinRange
{
public:
    AddRuleinRange(T low, T high, BoundsKind bounds = BOUNDS_CLOSED)
        : low_(low)
        , high_(high)
        , bounds_(bounds)
    {}
    void operator()(Property<T>& property) const
    {
        detail::push<T>(property, new RuleInRange<T>(low_, high_, bounds_));
    }

private:
    T low_;
    T high_;
    BoundsKind bounds_;
};

class AddRuleContainerSize
{
public:
    explicit AddRuleContainerSize(unsigned long size)
        : size_(size)
    {}
    template <class T> void operator()(Property<T>& property) const
    {
        detail::push<T>(property, new RuleAssertContainerSize<T>(size_));
    }

private:
    unsigned long size_;
};

struct AddRuleContainerNoEmpty
{
    template <class T> void operator()(Property<T>& property) const
    {
        detail::push<T>(property, new RuleAssertContainerNoEmpty<T>);
    }
};

class AddRuleIsAnEnumOfType
{
public:
    /// `info` must outlive the property: a function-local static of the algorithm's init().
    explicit AddRuleIsAnEnumOfType(EnumInfo const* info, std::initializer_list<int> excluded = {});
    template <class T> void operator()(Property<T>& property) const
    {
        detail::push<T>(property, new RuleIsAnEnumOfType<Property<T>>(info_, excluded_));
    }

private:
    EnumInfo const* info_;
    std::vector<int> excluded_;
};

namespace detail {

template <class Op, class P2> class AddRuleCompareWith
{
public:
    explicit AddRuleCompareWith(P2 const* other)
        : other_(other)
    {
        if (!other)
            QEL_THROW(RuleException, "The parameter \"reference\" must be set.");
    }
    template <class T> void operator()(Property<T>& property) const
    {
        push<T>(property, new RuleCompare<Property<T>, P2, Op>(other_));
    }

private:
    P2 const* other_;
};

} // namespace detail

/// `AddRuleCompare<detail::NotEqualTo>(&input)`. Images are compared by their addresses.
template <class Op, class T> detail::AddRuleCompareWith<Op, Property<T>> AddRuleCompare(Property<T> const* other)
{
    return detail::AddRuleCompareWith<Op, Property<T>>(other);
}

} // namespace qel
